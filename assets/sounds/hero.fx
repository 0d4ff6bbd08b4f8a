# Sounds of the heroes: springy, woody, with air. See README.md for the settings.

sound snd_jump 0.25 level=-17                     # springy rising chirp
  layer osc=pulse:.3:9:.08 hz=290>240@.02>820@.17 adsr=.004:.3:.15:.05 cut=2600>5200@.15 res=.1
  layer osc=sin hz=580>480@.02>1640@.17 adsr=.004:.2:0 vol=-9
  layer osc=noise cut=3000>6500@.12 filter=bp res=.3 adsr=.01:.1:0 vol=-24

sound snd_skid 0.3 loop level=-20                 # scraping sole
  layer osc=noise cut=2300 filter=bp res=.72 steady=.06 trem=33.4:.55
  layer osc=noise cut=5200 filter=bp res=.4 steady=.06 trem=46.7:.5 vol=-7
  layer osc=saw hz=180 steady=.03 vib=36:90 cut=1500 filter=bp res=.5 trem=33.4:.7 vol=-12

sound snd_swim 0.25 level=-18                     # watery swish
  layer osc=noise cut=420>1500@.09>500@.22 filter=bp res=.7 adsr=.05:.14:0
  layer osc=noise cut=2200>3800@.1>1800@.2 filter=bp res=.5 adsr=.06:.09:0 vol=-9
  layer type=drip tune=420 dec=.09 at=.05 vol=-9
  layer type=drip tune=610 dec=.06 at=.12 vol=-13

sound snd_kick 0.15 level=-16                     # flat smack
  layer type=tom tune=150 dec=.07 tone=.8
  layer osc=noise cut=1900>900@.05 filter=bp res=.35 adsr=.001:.045:0 vol=-2
  layer type=wood tune=520 dec=.04 tone=.5 vol=-6

sound snd_throw 0.2 level=-18                     # quick swing of an arm
  layer osc=noise cut=700>2600@.09>1100@.18 filter=bp res=.55 adsr=.05:.09:0
  layer osc=noise cut=4500 filter=hp res=.1 adsr=.06:.05:0 vol=-12

sound snd_spin 0.3 level=-18                      # short whirl
  layer osc=noise cut=600>2400@.08>900@.14>2800@.21>1000@.3 filter=bp res=.65 adsr=.03:.2:.3:.06
  layer osc=tri hz=320>560@.08>360@.14>640@.21>400@.3 adsr=.02:.2:.3:.05 vol=-10

sound snd_spinstomp 0.4 level=-15                 # heavy twirl and thud
  layer osc=noise cut=500>2000@.07>700@.13 filter=bp res=.6 adsr=.02:.1:0 vol=-5
  layer type=kick tune=88 dec=.16 tone=.7 at=.12
  layer osc=noise cut=900>220@.15 adsr=.002:.14:0 at=.12 len=.2 vol=-3
  layer type=wood tune=230 dec=.07 at=.12 vol=-6
  layer osc=noise cut=3000>1500@.15 filter=bp res=.3 adsr=.02:.16:0 at=.14 vol=-15

sound snd_stomp 0.2 level=-16                     # squashy hop
  layer osc=tri osc2=pulse:.3 mix=.3 hz=260>430@.03>110@.14 adsr=.002:.16:0 cut=2400>700@.14
  layer osc=noise cut=3000>700@.1 filter=bp res=.6 adsr=.001:.08:0 vol=-4
  layer type=wood tune=420 dec=.05 tone=.3 vol=-6

sound snd_stomp2 0.4 level=-14                    # deep ground thump
  layer type=kick tune=62 dec=.24 tone=.8 vol=-4
  layer osc=noise cut=1900>260@.2 adsr=.002:.22:0
  layer osc=tri osc2=pulse:.4 mix=.3 hz=240>180@.1 adsr=.002:.2:0 cut=1200 vol=-3
  layer osc=noise scatter=9:.25:-10 len=.01 adsr=.001:.012:0 cut=2600 filter=bp res=.6 rnd=9 at=.05 vol=-12

sound snd_hurt 0.4 level=-16                      # snort and grunt
  layer osc=noise cut=900>1700@.08 filter=bp res=.6 adsr=.02:.07:0 len=.12
  layer osc=saw hz=170>120@.14>95@.26 adsr=.01:.2:0 at=.1 vowel=o>u@.2 breath=.25 drive=.3
  layer osc=noise cut=3500 filter=bp res=.2 adsr=.02:.06:0 vol=-10

sound snd_die 0.7 level=-15                       # squash burst with a falling squeak
  layer osc=noise cut=4200>600@.16 filter=bp res=.4 adsr=.001:.14:0
  layer type=kick tune=90 dec=.12 tone=.9 vol=-3
  layer osc=fm:2:2.2:.4 hz=1500>1250@.12>240@.6 vib=19:60:.0 adsr=.02:.5:.2:.12 at=.05 len=.46 vol=-4
  layer osc=sin scatter=7:.25:-9 hz=900>400@.03 len=.02 adsr=.002:.03:0 rnd=10 at=.03 vol=-8

sound snd_bleed 0.3 level=-17                     # juicy squelch
  layer osc=noise cut=700>2300@.06>500@.14>1500@.2 filter=bp res=.82 adsr=.006:.2:0
  layer osc=sin scatter=8:.16:-6 hz=320>760@.025 len=.02 adsr=.002:.03:0 rnd=8 vol=-4
  layer type=drip tune=260 dec=.1 vol=-4

sound snd_whistle 0.6 level=-17                   # finger whistle, two notes up
  layer osc=sin hz=1500>1760@.03>1730@.2 adsr=.015:.3:.8:.03 len=.19
  layer osc=sin hz=1900>2349@.04>2330@.3 adsr=.015:.4:.75:.09 at=.24 len=.25 vib=6.5:22:.12
  layer osc=noise cut=1750 filter=bp res=.93 adsr=.01:.3:.8:.03 len=.19 vol=-11
  layer osc=noise cut=2340 filter=bp res=.93 adsr=.01:.3:.8:.08 at=.24 len=.25 vol=-11

sound snd_heartbeat 1.33333333 loop level=-19     # double stroke, once in 80 steps
  layer type=kick tune=82 dec=.15 tone=.25 vol=-6
  layer osc=tri osc2=pulse:.4 mix=.25 hz=230>185@.1 adsr=.004:.14:0 cut=900
  layer type=kick tune=70 dec=.17 tone=.2 at=.32 vol=-9
  layer osc=tri osc2=pulse:.4 mix=.25 hz=210>178@.1 adsr=.004:.16:0 cut=800 at=.32 len=.3 vol=-3
  layer osc=noise cut=500 adsr=.01:.09:0 len=.1 vol=-8
  layer osc=noise cut=420 adsr=.01:.1:0 at=.32 len=.12 vol=-11

sound snd_pmeter 0.4 loop level=-20               # quick high trill
  layer osc=pulse:.35 times=4:.1 hz=1318>1318@.048>1568@.052 len=.088 adsr=.003:.4:.6:.01 cut=4200
  layer osc=sin times=4:.1 hz=2637>2637@.048>3136@.052 len=.088 adsr=.003:.3:.5:.01 vol=-9

sound snd_powerup 0.6 level=-16 reverb=.1:.4      # rising three-note gulp: D, F sharp, B, each scooped from below
  layer osc=tri osc2=pulse:.35 mix=.35 hz=230>294@.06 adsr=.006:.15:.5:.03 len=.11 cut=1500>3400@.08 res=.2
  layer osc=tri osc2=pulse:.35 mix=.35 hz=290>370@.06 adsr=.006:.15:.5:.03 at=.15 len=.11 cut=1500>3800@.08 res=.2 vol=.5
  layer osc=tri osc2=pulse:.35 mix=.35 hz=370>494@.07 adsr=.006:.26:.3:.08 at=.3 len=.2 vib=7:20:.1 cut=1500>4400@.08 res=.2 vol=1
  layer osc=modal:1:1:.1:2.76:.4:.06 hz=988 at=.34 len=.2 adsr=.001:2:1:.05 vol=-9
  layer osc=sin hz=160>420@.05 times=3:.15:0 len=.04 adsr=.004:.05:0 vol=-5
