NAME  P
ROWS
 N  obj
 L  a
 G  b
 E  c
COLUMNS
 T1 s 'MARKER' 'SOSORG'
 x a 1
ENDATA
