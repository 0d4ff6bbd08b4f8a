# Shots, lasers, rockets, fire and foes.

sound snd_pistol 0.25 level=-15                   # short flat shot
  layer osc=noise cut=4800>1200@.06 res=.15 adsr=.001:.07:0
  layer type=tom tune=180 dec=.06 tone=.9 vol=-3
  layer osc=noise cut=900>400@.15 filter=bp res=.3 adsr=.004:.16:0 vol=-9

sound snd_pistolplus 0.35 level=-15               # fuller shot with a metallic ring
  layer osc=noise cut=5200>900@.08 res=.15 adsr=.001:.09:0
  layer type=kick tune=85 dec=.12 tone=.9 vol=-3
  layer osc=modal:1:1:.09:1.59:.6:.07:2.43:.4:.05 hz=1240 len=.3 adsr=.001:2:1:.05 at=.004 vol=-9
  layer osc=noise cut=1200>500@.2 filter=bp res=.3 adsr=.01:.22:0 vol=-12

sound snd_powershot 0.9 level=-14 echo=.28:.11:.45 reverb=.08:.8   # big shot with echo
  layer osc=noise cut=5600>700@.14 res=.15 adsr=.001:.16:0
  layer type=kick tune=66 dec=.2 tone=.9 vol=-2
  layer osc=tri hz=260>80@.12 adsr=.001:.2:0 vol=-4
  layer osc=modal:1:1:.14:1.59:.6:.1:2.7:.4:.07 hz=820 len=.4 adsr=.001:2:1:.05 at=.004 vol=-12

sound snd_rapidfire 0.08 level=-19                # very short tick-shot
  layer osc=noise cut=4200>1600@.02 filter=bp res=.3 adsr=.001:.022:0
  layer type=wood tune=560 dec=.022 tone=.7 vol=-2

sound snd_click 0.08 level=-20                    # dry click
  layer type=rim tune=1900 dec=.018 tone=.6
  layer osc=sin hz=1250>900@.03 adsr=.001:.03:0 len=.03 vol=-9

sound snd_reload 0.15 level=-18                   # small slide-and-click
  layer osc=noise cut=1800>3600@.05 filter=bp res=.5 adsr=.01:.045:0 len=.06 vol=-5
  layer type=rim tune=1350 dec=.02 tone=.7 at=.062
  layer osc=modal:1:1:.03:2.3:.5:.02 hz=2150 at=.064 len=.06 adsr=.001:2:1:.02 vol=-8

sound snd_laser 0.1 level=-19                     # thin zip
  layer osc=pulse:.25 hz=3100>620@.07 adsr=.001:.07:0 cut=6000
  layer osc=sin hz=4200>900@.06 adsr=.001:.05:0 vol=-8

sound snd_laserblast 0.35 level=-15               # strong zap
  layer osc=saw osc2=pulse:.3 detune=18 hz=2400>180@.22 adsr=.001:.26:0 cut=7000>1800@.25 res=.25 drive=.3
  layer osc=fm:2.5:4:.12 hz=900>160@.2 adsr=.001:.22:0 vol=-5
  layer osc=noise cut=6000>1200@.15 filter=bp res=.4 adsr=.001:.12:0 vol=-8

sound snd_rocket 0.7 level=-15                    # hissing launch
  layer osc=noise cut=1400>4200@.18>2600@.6 filter=bp res=.2 adsr=.03:.6:.35:.18 len=.5
  layer osc=noise cut=350>800@.2>500@.6 adsr=.04:.6:.4:.18 len=.5 vol=-3
  layer osc=saw hz=70>190@.25>150@.6 adsr=.03:.6:.3:.15 len=.5 cut=900 vol=-9
  layer osc=noise cut=5000 filter=bp res=.2 adsr=.001:.03:0 vol=-5

sound snd_bombthrow 0.3 level=-18                 # low swing with a fuse hiss
  layer osc=noise cut=320>1100@.12>480@.26 filter=bp res=.6 adsr=.06:.16:0
  layer osc=noise cut=6200 filter=hp res=.2 adsr=.03:.4:.5:.06 trem=41:.5 vol=-11
  layer osc=noise scatter=10:.24:0 len=.004 adsr=.001:.005:0 cut=5200 filter=bp res=.4 vol=-12

sound snd_fireball 0.4 level=-17                  # small whoosh of flame
  layer osc=noise cut=500>1900@.1>600@.36 filter=bp res=.4 adsr=.05:.3:0
  layer osc=noise cut=240>420@.1>260@.3 adsr=.04:.3:0 vol=-3
  layer osc=noise scatter=9:.3:-8 len=.006 adsr=.001:.008:0 cut=3200 filter=bp res=.5 vol=-13

sound snd_flames 1.5 level=-18                    # steady fire crackle
  layer osc=noise cut=420 adsr=.15:2:.9:.3 len=1.15 trem=7.3:.3
  layer osc=noise cut=1300 filter=bp res=.3 adsr=.15:2:.9:.3 len=1.15 trem=11.1:.5 vol=-7
  layer osc=noise scatter=46:1.2:-2 len=.008 adsr=.001:.009:0 cut=2700 filter=bp res=.6 rnd=8 vol=-4
  layer type=wood tune=900 dec=.02 scatter=14:1.2:-3 rnd=9 vol=-9

sound snd_lavrix 0.2 level=-18                    # short hot puff
  layer osc=noise cut=700>2100@.04>500@.17 filter=bp res=.35 adsr=.012:.13:0
  layer osc=noise cut=380 adsr=.01:.12:0 vol=-3
  layer osc=tri hz=210>120@.1 adsr=.004:.1:0 vol=-8

sound snd_batlet 0.3 level=-18                    # leathery squeak
  layer osc=fm:1:1.4:.3 hz=2100>2900@.05>1700@.14>2300@.2 vib=34:90 adsr=.008:.2:.3:.06 len=.2
  layer osc=noise times=3:.07:-4 cut=900>500@.04 filter=bp res=.4 adsr=.012:.045:0 len=.06 vol=-4

sound snd_lick 0.2 level=-19                      # soft wing flap
  layer osc=noise cut=420>1000@.05>380@.16 filter=bp res=.45 adsr=.02:.12:0
  layer osc=noise cut=3200>1800@.1 filter=bp res=.2 adsr=.025:.06:0 vol=-10
  layer type=tom tune=105 dec=.07 tone=.2 vol=-7

sound snd_roar 1.4 level=-14 reverb=.08:.8        # long throaty roar
  layer osc=saw osc2=pulse:.4 detune=24 hz=88>125@.25>104@.7>62@1.3 adsr=.09:1.4:.6:.25 len=1.1 vowel=o>a@.3>o@.9>u@1.3 formant=.8 vib=27:120 breath=.3 drive=.6
  layer osc=noise cut=700>1300@.3>500@1.2 filter=bp res=.4 adsr=.12:1.4:.5:.25 len=1.1 trem=31:.6 vol=-6
  layer osc=saw hz=44>62@.25>52@.7>31@1.3 adsr=.09:1.4:.6:.25 len=1.1 cut=520 vol=-5

sound snd_laugh 1.6 level=-15 echo=.22:.13:.4 reverb=.22:1.4       # hollow laugh
  layer osc=saw osc2=saw detune=12 times=6:.215:-7 hz=150>196@.05>118@.17 len=.13 adsr=.02:.14:.4:.05 vowel=a>o@.15 formant=.92 breath=.2
  layer osc=noise times=6:.215:-7 cut=1600 filter=bp res=.4 len=.05 adsr=.015:.05:0 vol=-10
  layer osc=tri times=6:.215:-7 hz=75>98@.05>59@.17 len=.13 adsr=.02:.14:.3:.05 vol=-7

sound snd_alert 1.2 level=-16                     # siren, two swings
  layer osc=pulse:.4 osc2=saw detune=8 hz=560>1080@.28>560@.58>1080@.86>560@1.16 adsr=.01:2:.9:.06 len=1.12 cut=3600 res=.2
  layer osc=sin hz=1120>2160@.28>1120@.58>2160@.86>1120@1.16 adsr=.01:2:.9:.06 len=1.12 vol=-12
