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
SOS
 S1 one  5
    x  1
    one  y  2
 S2
    y  1
    z  2
ENDATA
