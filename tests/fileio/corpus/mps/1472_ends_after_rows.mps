NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
