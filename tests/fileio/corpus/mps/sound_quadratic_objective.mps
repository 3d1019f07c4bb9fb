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
QMATRIX
    x  x  2
    x  y  1
    y  x  1
ENDATA
