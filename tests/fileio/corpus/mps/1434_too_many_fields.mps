NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
COLUMNS
    x  a  1  b  2  c  3
ENDATA
