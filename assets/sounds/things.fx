# Things that break, open, bounce and fall: clay, wood, iron, water.

sound snd_break 0.5 level=-15                     # crack of fired clay and falling bits
  layer osc=noise cut=3600>1100@.07 filter=bp res=.3 adsr=.001:.06:0
  layer osc=modal:1:1:.03:1.83:.7:.022:2.71:.5:.015 hz=760 len=.08 adsr=.001:2:1:.03 vol=-1
  layer type=tom tune=190 dec=.07 tone=.7 vol=-4
  layer osc=modal:1:1:.018:2.3:.6:.011:3.9:.3:.007 scatter=13:.36:-12 hz=1500 rnd=9 len=.03 adsr=.001:2:1:.01 at=.05 vol=-3

sound snd_bump 0.12 level=-17                     # dull knock
  layer type=tom tune=170 dec=.06 tone=.5
  layer type=wood tune=310 dec=.035 tone=.5 vol=-3
  layer osc=noise cut=900 adsr=.001:.02:0 vol=-8

sound snd_crumble 0.6 level=-16                   # rattle of dry sticks
  layer osc=modal:1:1:.02:2.71:.6:.012:4.9:.25:.006 scatter=22:.44:-8 hz=900 rnd=7 len=.04 adsr=.001:2:1:.01
  layer type=wood tune=640 dec=.05 scatter=7:.3:-6 rnd=6 vol=-5
  layer osc=noise cut=2600>1300@.5 filter=bp res=.25 adsr=.04:.4:0 vol=-15

sound snd_door 0.7 level=-17 reverb=.08:.5        # wooden latch and hinge
  layer type=rim tune=1150 dec=.03 tone=.6 vol=-2
  layer type=wood tune=420 dec=.06 at=.045
  layer osc=saw hz=62>88@.18>74@.36 adsr=.06:.3:.5:.1 at=.1 len=.32 cut=900>1700@.2>1100@.4 filter=bp res=.75 trem=27:.6 vol=-5
  layer osc=saw hz=310>420@.2>350@.36 adsr=.08:.3:.4:.08 at=.1 len=.3 cut=2400 filter=bp res=.6 trem=31:.75 vol=-11
  layer type=tom tune=120 dec=.14 tone=.4 at=.47 vol=-3
  layer type=wood tune=290 dec=.07 at=.47 vol=-4

sound snd_hammer 0.3 level=-16                    # hammer on iron
  layer osc=modal:1:1:.09:1.51:.6:.07:2.76:.55:.06:4.3:.3:.04:5.9:.2:.03 hz=930 len=.28 adsr=.001:2:1:.02
  layer type=tom tune=210 dec=.05 tone=.8 vol=-4
  layer osc=noise cut=4200 filter=bp res=.2 adsr=.001:.012:0 vol=-4

sound snd_kerthud 0.45 level=-14                  # heavy iron thud
  layer type=kick tune=64 dec=.2 tone=.9
  layer osc=noise cut=1500>240@.12 adsr=.001:.14:0 vol=-2
  layer osc=modal:1:1:.14:1.47:.7:.11:2.09:.5:.09:3.2:.35:.06:4.6:.2:.04 hz=187 len=.4 adsr=.001:2:1:.05 vol=-3
  layer osc=modal:1:1:.05:1.72:.6:.04 hz=1130 len=.2 adsr=.001:2:1:.05 vol=-13

sound snd_chest 0.35 level=-17                    # lid of a chest
  layer type=rim tune=1500 dec=.025 tone=.6 vol=-3
  layer osc=saw hz=95>150@.12 adsr=.03:.12:.4:.04 at=.03 len=.12 cut=1300 filter=bp res=.7 trem=38:.6 vol=-6
  layer type=wood tune=360 dec=.06 at=.17
  layer type=tom tune=140 dec=.1 tone=.5 at=.17 vol=-2
  layer osc=modal:1:1:.06:2.4:.5:.04 hz=1750 at=.19 len=.12 adsr=.001:2:1:.04 vol=-12

sound snd_coin 0.35 level=-18                     # bright amber ping with a short tail
  layer osc=modal:1:1:.13:2.32:.5:.09:4.25:.3:.05:6.63:.15:.02 hz=1865 adsr=.001:2:1:.1 len=.24
  layer osc=modal:1:1:.11 hz=1876 adsr=.001:2:1:.1 len=.24 vol=-7
  layer osc=noise cut=7000 filter=bp res=.4 adsr=.001:.012:0 len=.02 vol=-10

sound snd_spring 0.35 level=-17                   # coil twang
  layer osc=fm:1.5:3.4:.24 hz=180>520@.08>430@.13>560@.18>500@.25 vib=22:70:.02 adsr=.002:.34:0 cut=6500
  layer osc=modal:1:1:.1:2.76:.4:.05 hz=900 adsr=.001:2:1:.05 len=.1 vol=-10

sound snd_superspring 0.5 level=-16               # deep coil twang rising an octave
  layer osc=fm:1.5:4.2:.3 hz=110>150@.06>300@.2>270@.26>330@.32>300@.42 vib=19:60:.04 adsr=.002:.5:0 cut=5200
  layer osc=tri hz=55>75@.06>150@.2 adsr=.003:.35:0 vol=-6
  layer osc=modal:1:1:.14:2.76:.4:.07 hz=620 adsr=.001:2:1:.05 len=.2 vol=-9

sound snd_sprout 0.5 level=-18                    # swelling creak upward
  layer osc=saw hz=120>150@.15>330@.44 adsr=.12:.6:.9:.05 cut=700>2600@.42 filter=bp res=.68 trem=29:.6
  layer osc=tri hz=240>300@.15>660@.44 adsr=.14:.6:.9:.05 vol=-6
  layer osc=noise cut=800>3200@.44 filter=bp res=.5 adsr=.2:.6:.9:.05 vol=-14

sound snd_pop 0.12 level=-18                      # wet pop
  layer osc=sin hz=380>1100@.035 adsr=.002:.06:0
  layer osc=noise cut=1800>3500@.03 filter=bp res=.5 adsr=.001:.018:0 vol=-7
  layer type=drip tune=720 dec=.04 at=.012 vol=-6

sound snd_shatter 0.5 level=-15                   # clay shatter
  layer osc=noise cut=5200>1800@.1 filter=bp res=.25 adsr=.001:.08:0
  layer osc=modal:1:1:.05:1.62:.8:.04:2.83:.6:.03:4.1:.3:.02 hz=1050 len=.15 adsr=.001:2:1:.04
  layer osc=modal:1:1:.03:2.13:.7:.022:3.7:.4:.014 scatter=18:.36:-14 hz=2100 rnd=8 len=.06 adsr=.001:2:1:.02 at=.03 vol=-2

sound snd_explode 0.9 level=-14 reverb=.12:.9     # round boom
  layer osc=noise cut=5200>1400@.12>260@.75 res=.15 adsr=.002:.8:0
  layer osc=tri hz=170>75@.16>52@.7 adsr=.002:.5:0 cut=900 vol=-4
  layer osc=noise cut=620>330@.6 filter=bp res=.4 adsr=.03:.8:0 vol=-3
  layer type=kick tune=62 dec=.2 tone=.9 vol=-3

sound snd_engine 0.25 loop level=-19              # one stroke of a small motor, 15 steps
  layer osc=pulse:.35 hz=112 steady=.02 cut=1300 trem=8:.55
  layer osc=noise cut=700 filter=bp res=.4 steady=.05 trem=8:.8 vol=-6
  layer type=tom tune=130 dec=.07 tone=.5 vol=-5
  layer type=rim tune=900 dec=.02 tone=.4 at=.125 vol=-10

sound snd_warp 0.6 level=-17 echo=.3:.055:.5      # hollow slide through a tube
  layer osc=fm:1:1.6:.6 hz=520>210@.2>300@.3>120@.5 adsr=.02:.5:.5:.1 len=.46 cut=1500 res=.3
  layer osc=noise cut=900>380@.2>560@.3>240@.5 filter=bp res=.85 adsr=.03:.5:.4:.1 len=.44 vol=-5

sound snd_lavagulp 0.5 level=-16                  # bubbling gulp
  layer osc=sin times=5:.055:-5 hz=150>340@.045 len=.03 adsr=.004:.06:0 rnd=3
  layer osc=tri hz=120>90@.1>260@.26 adsr=.02:.25:0 at=.18 vowel=u>o@.15>u@.25 vol=-1
  layer osc=noise cut=500>1200@.2>400@.4 filter=bp res=.6 adsr=.05:.35:0 vol=-10

sound snd_drommelfall 3.2 level=-14 reverb=.1:1.2 # long whistle down and a big soft crash
  layer osc=sin hz=2300>2100@.4>380@2.1 adsr=.1:1:.9:.02 len=2.1 vib=5.5:25:.2 vol=-9
  layer osc=noise cut=2300>2100@.4>420@2.1 filter=bp res=.9 adsr=.2:1:.9:.02 len=2.1 vol=-17
  layer osc=noise cut=2600>700@.15>200@.8 adsr=.004:.8:0 at=2.14
  layer type=kick tune=54 dec=.35 tone=.7 at=2.14 vol=-1
  layer osc=tri hz=140>60@.3 adsr=.003:.5:0 at=2.14 cut=700 vol=-4
  layer osc=noise scatter=16:.7:-14 len=.03 cut=1500 filter=bp res=.4 adsr=.002:.05:0 at=2.22 vol=-10
