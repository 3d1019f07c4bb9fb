NAME
REFROW
    b
ROWS
 N  obj
 L  a
 G  b
 E  c
COLUMNS
 S2 s 'MARKER' 'SOSORG'
 x a 1 b 4
 y a 1
 s 'MARKER' 'SOSEND'
 z a 1
ENDATA
