NAME
OBJSENSE
    MAX
OBJNAME
    p
ROWS
 N  o
 N  p
 L  r
COLUMNS
    x  o  1  p  2
    x  r  1
ENDATA
