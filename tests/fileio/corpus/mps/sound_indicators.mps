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
BOUNDS
 BV  y
 UP  z  3
INDICATORS
 IF a  y  1
 IF c  z  0
ENDATA
