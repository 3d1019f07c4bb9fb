NAME
ROWS
 N  COST
 L  R 1
COLUMNS
    X         R 1              1 5.
ENDATA
