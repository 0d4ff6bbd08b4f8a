# Weather and dread.

sound snd_rain 4 loop level=-22                   # steady rain
  layer osc=noise cut=900 filter=hp res=.05 steady=.7
  layer osc=noise cut=2600 filter=bp res=.2 steady=.9 trem=.5:.2 vol=-3
  layer osc=noise cut=420 steady=.8 trem=.75:.25 vol=-10
  layer type=drip tune=1500 dec=.03 scatter=60:4:0 rnd=10 vol=-14
  layer osc=noise scatter=110:4:0 len=.004 adsr=.001:.006:0 cut=4600 filter=bp res=.5 rnd=8 vol=-13

sound snd_thunder 2.2 level=-14 reverb=.15:1.4    # crack and long roll
  layer osc=noise cut=6500>900@.12 res=.1 adsr=.001:.12:0
  layer osc=noise times=3:.07:-7 cut=3200>700@.06 filter=bp res=.2 adsr=.002:.06:0 len=.08 vol=-3
  layer osc=noise cut=900>260@.5>150@1.8 adsr=.03:1.9:0 trem=6.3:.55 at=.06 vol=-2
  layer osc=noise cut=380>160@1.5 filter=bp res=.35 adsr=.1:1.7:0 trem=3.7:.6 at=.1 vol=-3
  layer type=kick tune=58 dec=.4 tone=.5 at=.03 vol=-6

sound snd_horror 24 loop level=-31 reverb=.35:3.5 # very quiet low drone with far knocks
  layer osc=tri osc2=saw detune=7 mix=.35 hz=110 steady=3 cut=620 vib=.125:14 trem=.125:.35 vol=-3
  layer osc=tri osc2=saw mix=.2 hz=220 steady=3 trem=.0833:.8 cut=900 vol=-3
  layer osc=sin hz=233.1 steady=3 trem=.0417:1 vol=-11
  layer osc=noise cut=330 filter=bp res=.8 steady=3 trem=.0833:.7 vol=-9
  layer type=tom tune=118 dec=.2 tone=.4 at=3.1 vol=-1
  layer type=tom tune=84 dec=.22 tone=.4 at=3.55 vol=-4
  layer type=wood tune=240 dec=.08 at=9.4 vol=-8
  layer type=tom tune=80 dec=.25 tone=.4 at=14.2 vol=-2
  layer type=tom tune=86 dec=.22 tone=.4 at=14.62 vol=-5
  layer type=tom tune=82 dec=.22 tone=.4 at=15.02 vol=-4
  layer type=wood tune=205 dec=.09 at=20.7 vol=-9

sound snd_horror2 6 loop level=-19 reverb=.25:1.8 # shivering strings, rising and falling
  layer osc=saw osc2=saw detune=14 unison=2:9 hz=622>659@1.5>880@3>659@4.5>622@6 steady=.25 trem=11.5:.75 cut=3600 filter=bp res=.2
  layer osc=saw osc2=saw detune=-11 unison=2:8 hz=466>494@1.5>622@3>494@4.5>466@6 steady=.25 trem=12.3:.75 cut=2800 filter=bp res=.2 vol=-2
  layer osc=saw hz=329.6>311.1@3>329.6@6 steady=.25 trem=10.7:.7 cut=1900 vol=-4
  layer osc=tri hz=164.8 steady=.5 trem=.167:.7 cut=600 vol=-5
