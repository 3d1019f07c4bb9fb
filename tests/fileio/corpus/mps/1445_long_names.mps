NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
 L  longer_than_eight
 E  longer_than_eight
COLUMNS
    x  obj  1  a  1
    x  b  2
    y  a  1  c  -1
    z  obj  3
ENDATA
