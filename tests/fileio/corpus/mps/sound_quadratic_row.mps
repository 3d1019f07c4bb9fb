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
    r  a  4
QCMATRIX   a
    x  x  2
ENDATA
