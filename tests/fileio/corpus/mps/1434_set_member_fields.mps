NAME  P
ROWS
 N  obj
 L  a
COLUMNS
    x  obj  1  a  1
    y  a  1
SOS
 S1 s
    x  one  y  2
ENDATA
