# Menus, editor, messages.

sound snd_message 0.4 level=-18                   # soft wooden double knock with a small rise
  layer osc=modal:1:1:.07:2.7:.4:.03:5.1:.15:.015 hz=392 len=.2 adsr=.002:2:1:.05
  layer osc=modal:1:1:.09:2.7:.4:.03:5.1:.15:.015 hz=494 at=.13 len=.2 adsr=.002:2:1:.05 vol=1
  layer type=wood tune=392 dec=.04 tone=.2 vol=-9
  layer type=wood tune=494 dec=.04 tone=.2 at=.13 vol=-8

sound snd_move 0.15 level=-19                     # short two-note blip
  layer osc=pulse:.4 hz=659 adsr=.003:.06:0 len=.055 cut=3200
  layer osc=pulse:.4 hz=880 adsr=.003:.07:0 at=.058 len=.07 cut=3600
  layer osc=sin hz=1760 adsr=.003:.05:0 at=.058 len=.07 vol=-12

sound snd_pause 0.3 level=-18                     # two muted notes, down then up
  layer osc=pluck:.35:.3:.5 hz=440 len=.1 adsr=.002:.2:.5:.03 cut=2400
  layer osc=pluck:.35:.3:.5 hz=587 at=.12 len=.12 adsr=.002:.2:.5:.04 cut=2800
  layer osc=sin hz=440 adsr=.003:.1:0 len=.1 vol=-6
  layer osc=sin hz=587 adsr=.003:.12:0 at=.12 len=.14 vol=-6

sound snd_wrong 1.4 level=-18                     # low double buzz, then silence to read
  layer osc=pulse:.3 osc2=saw detune=-35 times=2:.17:0 hz=156>147@.12 len=.11 adsr=.004:.3:.8:.015 cut=1600 res=.2
  layer osc=pulse:.5 times=2:.17:0 hz=78>73@.12 len=.11 adsr=.004:.3:.8:.015 cut=900 vol=-5

sound snd_pickup 0.15 level=-19                   # light pick of a coin purse
  layer osc=modal:1:1:.03:2.32:.5:.02:4.25:.3:.012 scatter=5:.07:-4 hz=1650 rnd=5 len=.05 adsr=.001:2:1:.015
  layer osc=noise cut=2600>1500@.08 filter=bp res=.3 adsr=.015:.06:0 vol=-10

sound snd_magic 0.5 level=-18 reverb=.2:.5        # shimmering chord
  layer osc=fm:3.5:1.3:.2 hz=880 adsr=.002:.3:0 len=.34
  layer osc=fm:3.5:1.3:.2 hz=1109 adsr=.002:.3:0 at=.04 len=.34 vol=-1
  layer osc=fm:3.5:1.3:.2 hz=1319 adsr=.002:.3:0 at=.08 len=.34 vol=-2
  layer osc=fm:3.5:1.3:.2 hz=1760 adsr=.002:.3:0 at=.12 len=.34 vol=-2
  layer osc=noise cut=7000 filter=bp res=.6 adsr=.08:.3:0 trem=24:.7 vol=-17

sound snd_book 0.4 level=-19                      # page turning
  layer osc=noise cut=1400>3800@.2>2200@.32 filter=bp res=.25 adsr=.06:.22:.2:.06 len=.28 trem=17:.45
  layer osc=noise scatter=12:.26:0 len=.006 adsr=.001:.008:0 cut=4200 filter=bp res=.3 vol=-8
  layer osc=noise cut=700>350@.08 filter=bp res=.3 adsr=.004:.06:0 at=.27 len=.08 vol=-5
