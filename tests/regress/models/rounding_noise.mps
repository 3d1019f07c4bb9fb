NAME          rounding_noise
ROWS
 N  cost
 G  r0
 L  r1
 L  r2
 G  r3
 G  r4
 L  r5
 L  r6
 L  r7
 E  r8
 G  r9
 L  r10
 G  r11
 L  r12
 L  r13
 N  r14
 L  r15
 L  r16
 E  r17
 G  r18
 L  r19
 E  r20
 E  r21
 L  r22
 L  r23
 E  r24
COLUMNS
    x0  r3  -0.3333333333333333
    x0  r10  1.1071428571428572
    x0  r12  1
    x0  r19  0.01
    x1  cost  -1.875
    x1  r7  1.25
    x1  r18  -14.0625
    x2  cost  -2.5
    x2  r0  0.03125
    x2  r3  0.20833333333333331
    x2  r11  -2
    x2  r19  -0.00625
    x3  cost  52
    x3  r2  18
    x3  r14  72
    x4  cost  9
    x4  r0  -0.125
    x4  r3  -0.8333333333333333
    x4  r11  8
    x4  r19  0.025
    x5  cost  -0.2
    x5  r1  -4
    x5  r17  0.025
    x6  r13  1.4821428571428572
    x6  r16  0.125
    x6  r24  -1.25
    x7  r3  0.16666666666666666
    x7  r5  75
    x7  r19  -5e-05
    x8  cost  0.05
    x8  r9  1e+02
    x8  r15  18
    x8  r17  -0.00625
    x8  r20  -16
    x8  r23  2
    x9  cost  -32
    x9  r0  -1
    x10  cost  -38
    x10  r5  -2e+02
    x11  r2  8
    x11  r15  -32
    x12  r5  6e+02
    x12  r11  -72
    x12  r15  -32
    x12  r18  -5e+01
    x13  cost  144
    x13  r4  6
    x13  r12  -4
    x14  cost  -101.42857142857143
    x14  r2  -2.7142857142857144
    x14  r21  3.357142857142857
    x15  r20  -157.71428571428572
    x16  cost  -8.057142857142857
    x16  r3  -0.16666666666666666
    x16  r5  -24.75
    x16  r15  56
    x16  r17  -0.24285714285714285
    x16  r19  0.005
    x17  cost  56
    x17  r7  -56
    x18  cost  24
    x18  r3  5.333333333333333
    x18  r9  -3168
    x18  r19  -0.16
    x19  cost  100.75
    x19  r3  -0.125
    x19  r4  0.03125
    x19  r13  0.0625
    x19  r14  -0.5
    x19  r22  -25
    x20  cost  1.875
    x20  r7  0.25
    x21  r5  -1e+02
    x22  cost  3.4285714285714284
    x22  r3  0.14583333333333331
    x22  r19  -0.004375
    x22  r21  -0.10714285714285714
RHS
    rhs  r1  14
    rhs  r2  3.5
    rhs  r3  -1666663.5
    rhs  r4  0.125
    rhs  r5  -247501025
    rhs  r7  130.5
    rhs  r9  -2.7e+03
    rhs  r10  2.3392857142857144
    rhs  r11  -72
    rhs  r12  4
    rhs  r13  0.75
    rhs  r15  559999514
    rhs  r17  -2428571.3348214286
    rhs  r18  -337.75
    rhs  r19  50004.33
    rhs  r20  353.1428571428571
    rhs  r21  0.8571428571428571
    rhs  r22  -1e+02
    rhs  r23  18
RANGES
    rng  r7  2
    rng  r10  0.875
    rng  r12  4.5
    rng  r13  0.5
    rng  r16  1.5
BOUNDS
 LO bnd  x0  2
 UP bnd  x0  4
 LO bnd  x1  16
 UP bnd  x1  24
 UP bnd  x2  48
 UP bnd  x3  1.75
 UP bnd  x4  1e+07
 FX bnd  x5  -3
 LO bnd  x6  -2e+07
 FR bnd  x8
 FR bnd  x9
 MI bnd  x10
 UP bnd  x10  4
 MI bnd  x11
 UP bnd  x11  -0
 UP bnd  x12  1
 FR bnd  x13
 LO bnd  x15  -1
 UP bnd  x15  2
 LO bnd  x16  -1e+07
 UP bnd  x16  1e+07
 MI bnd  x17
 UP bnd  x17  -0
 UP bnd  x18  1.25e+06
 FX bnd  x19  4
 FX bnd  x20  24
 MI bnd  x21
 UP bnd  x21  2.25
 MI bnd  x22
 UP bnd  x22  64
ENDATA
