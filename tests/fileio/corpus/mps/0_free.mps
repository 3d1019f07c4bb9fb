NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
COLUMNS
    x  obj  1  a  1
    x  b  2
    y  a  1  c  -1
    z  obj  3
RHS
    rhs  a  4  b  -1
RANGES
    rng  a  2
BOUNDS
 UP b  x  4
 MI b  y
 SC b  z  5
ENDATA
