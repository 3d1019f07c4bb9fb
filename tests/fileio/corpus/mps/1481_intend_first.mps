NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
COLUMNS
 M 'MARKER' 'INTEND'
 x a 1
ENDATA
