NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
RHS
    r  a  1
ENDATA
