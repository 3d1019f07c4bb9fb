NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
LAZYCONS
 E  u
COLUMNS
    x  obj  1  a  1
    x  b  2
    y  a  1  c  -1
    z  obj  3
    z  u  1
ENDATA
