NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
COLUMNS
 s 'MARKER' 'SOSEND'
 x a 1
ENDATA
