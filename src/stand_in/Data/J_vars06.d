; Variables of the instrument system
; number, name, unit, decimals, signed, page

[system]
version 6

[variables]
  1 BSP             kn      2 0 1
  2 AWA             deg     0 1 1
  3 AWS             kn      1 0 1
  4 TWA             deg     0 1 1
  5 TWS             kn      1 0 1
  6 TWD             degT    0 0 1
  7 HDG             degT    0 0 1
  8 COURSE          degT    0 0 1
  9 LEEWAY          deg     1 1 1
 10 HEEL            deg     1 1 1
 11 TRIM            deg     1 1 1
 12 RUDDER          deg     1 1 1
 13 ROT             deg/s   1 1 1
 14 COG             degT    0 0 2
 15 SOG             kn      2 0 2
 16 SET             degT    0 0 2
 17 DRIFT           kn      1 0 2
 18 LAT             deg     4 1 2
 19 LON             deg     4 1 2
 20 VARIATION       deg     1 1 2
 21 LOG             nm      2 0 2
 25 DEPTH           ft      1 0 3
 26 SEATEMP         degC    1 0 3
 27 AIRTEMP         degC    1 0 3
 28 BARO            hPa     1 0 3
 29 GWD             degT    0 0 3
 30 GWS             kn      1 0 3
 35 VMG             kn      2 1 4
 36 TARGBSP         kn      2 0 4
 37 TARGTWA         deg     0 1 4
 38 TARGVMG         kn      2 1 4
 39 POLBSP          kn      2 0 4
 40 POLPERCENT      %       0 0 4
 45 MKDIST          nm      2 0 5
 46 MKBRG           degT    0 0 5
 47 MKTIME          s       0 0 5
 50 TIMER           s       0 0 5
 51 TIMETOGUN       day     6 0 5
 60 VOLTS           V       1 0 6
 61 MASTANGLE       deg     1 1 6
 62 FORESTAY        t       2 0 6
 63 BACKSTAY        t       2 0 6
