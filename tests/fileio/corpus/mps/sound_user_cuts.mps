NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
USERCUTS
 L  u
 G  v
COLUMNS
    x  obj  1  a  1
    x  b  2
    y  a  1  c  -1
    z  obj  3
    z  u  1  v  2
RHS
    r  u  1
ENDATA
