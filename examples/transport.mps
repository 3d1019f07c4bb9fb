* Transport: three plants serve five markets; a lorry route from each plant to each market, cost for each load.
* The plants have limited supply, the markets a demand with some slack (RANGES).
* Optimal value: 4332
NAME          TRANSPRT
ROWS
 N  COST
 L  SLINZ
 L  SGRAZ
 L  SWELS
 G  DBERN
 G  DBONN
 G  DBRNO
 G  DLYON
 G  DMETZ
COLUMNS
    LIN_BER   COST               4.1   SLINZ                1
    LIN_BER   DBERN                1
    LIN_BON   COST               5.2   SLINZ                1
    LIN_BON   DBONN                1
    LIN_BRN   COST               2.3   SLINZ                1
    LIN_BRN   DBRNO                1
    LIN_LYO   COST               6.4   SLINZ                1
    LIN_LYO   DLYON                1
    LIN_MET   COST               4.8   SLINZ                1
    LIN_MET   DMETZ                1
    GRA_BER   COST               4.6   SGRAZ                1
    GRA_BER   DBERN                1
    GRA_BON   COST               6.1   SGRAZ                1
    GRA_BON   DBONN                1
    GRA_BRN   COST               2.9   SGRAZ                1
    GRA_BRN   DBRNO                1
    GRA_LYO   COST                 6   SGRAZ                1
    GRA_LYO   DLYON                1
    GRA_MET   COST               5.5   SGRAZ                1
    GRA_MET   DMETZ                1
    WEL_BER   COST               3.8   SWELS                1
    WEL_BER   DBERN                1
    WEL_BON   COST               4.9   SWELS                1
    WEL_BON   DBONN                1
    WEL_BRN   COST               2.6   SWELS                1
    WEL_BRN   DBRNO                1
    WEL_LYO   COST               6.2   SWELS                1
    WEL_LYO   DLYON                1
    WEL_MET   COST               4.5   SWELS                1
    WEL_MET   DMETZ                1
RHS
    RHS       SLINZ              350
    RHS       SGRAZ              280
    RHS       SWELS              420
    RHS       DBERN              180
    RHS       DBONN              220
    RHS       DBRNO              160
    RHS       DLYON              250
    RHS       DMETZ              140
RANGES
    RNG       DBERN               18
    RNG       DBONN               22
    RNG       DBRNO               16
    RNG       DLYON               25
    RNG       DMETZ               14
BOUNDS
 UP BND       LIN_BRN            100
 UP BND       WEL_BON            150
 LO BND       GRA_LYO             40
ENDATA
