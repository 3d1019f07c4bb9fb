NAME          CARDS
ROWS
 N  COST
 L  R 1
 G  R 2
COLUMNS
    C  1      COST               1.   R 1               -2.5
    MARKER                 'MARKER'                 'INTORG'
    C  2      R 1                4.
RHS
    MY RHS    R 1                5.   R 2                6.
BOUNDS
 UP B 1       C  1               8.
ENDATA
