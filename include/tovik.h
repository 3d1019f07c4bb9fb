/* TOVIK: a callable optimization library. Public interface; valid C99 and C++.
 *
 * Every routine returns 0 for success or a positive error code (TVKgeterrorstring gives its text), except where it says
 * otherwise. All indices count from 0; ranges begin..end are inclusive. */
#ifndef TOVIK_H
#define TOVIK_H

#include <stddef.h>
#include <stdio.h>

#if defined(__GNUC__)
#define TVK_API __attribute__((visibility("default")))
#else
#define TVK_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Handles ---------------------------------------------------------------------------------------------------- */
typedef struct TVKenvironment *EnvHandle;
typedef const struct TVKenvironment *ConstEnvHandle;
typedef struct TVKproblem *ProbHandle;
typedef const struct TVKproblem *ConstProbHandle;
typedef struct TVKchannel *ChannelHandle;

/* ---- Constants -------------------------------------------------------------------------------------------------- */
#define TVK_INFBOUND 1e20
#define TVK_MIN 1
#define TVK_MAX (-1)

/* ==== Section: environment, errors, channels (env/) ==== */

/* ==== Section: problem objects and solution query (env/) ==== */

/* ==== Section: parameters (param/) ==== */

/* Parameter numbers. Numbers of parameters and codes of errors are two different things that share digits. */
/* General, linear programs, presolve, simplex, reading limits, threads, tuning: 1001-1127 */
#define TVK_PARAM_ADVIND                 1001
#define TVK_PARAM_AGGFILL                1002
#define TVK_PARAM_AGGIND                 1003
#define TVK_PARAM_CFILEMUL               1005
#define TVK_PARAM_CLOCKTYPE              1006
#define TVK_PARAM_CRAIND                 1007
#define TVK_PARAM_DEPIND                 1008
#define TVK_PARAM_DPRIIND                1009
#define TVK_PARAM_PRICELIM               1010
#define TVK_PARAM_EPMRK                  1013
#define TVK_PARAM_EPOPT                  1014
#define TVK_PARAM_EPPER                  1015
#define TVK_PARAM_EPRHS                  1016
#define TVK_PARAM_SIMDISPLAY             1019
#define TVK_PARAM_ITLIM                  1020
#define TVK_PARAM_ROWREADLIM             1021
#define TVK_PARAM_NETFIND                1022
#define TVK_PARAM_COLREADLIM             1023
#define TVK_PARAM_NZREADLIM              1024
#define TVK_PARAM_OBJLLIM                1025
#define TVK_PARAM_OBJULIM                1026
#define TVK_PARAM_PERIND                 1027
#define TVK_PARAM_PERLIM                 1028
#define TVK_PARAM_PPRIIND                1029
#define TVK_PARAM_PREIND                 1030
#define TVK_PARAM_REINV                  1031
#define TVK_PARAM_RFILEMUL               1033
#define TVK_PARAM_SCAIND                 1034
#define TVK_PARAM_SCRIND                 1035
#define TVK_PARAM_SINGLIM                1037
#define TVK_PARAM_SINGTOL                1038
#define TVK_PARAM_TILIM                  1039
#define TVK_PARAM_PREDUAL                1044
#define TVK_PARAM_PREPASS                1052
#define TVK_PARAM_DATACHECK              1056
#define TVK_PARAM_REDUCE                 1057
#define TVK_PARAM_PRELINEAR              1058
#define TVK_PARAM_LPMETHOD               1062
#define TVK_PARAM_QPMETHOD               1063
#define TVK_PARAM_WORKDIR                1064
#define TVK_PARAM_WORKMEM                1065
#define TVK_PARAM_THREADS                1067
#define TVK_PARAM_CONFLICTDISPLAY        1074
#define TVK_PARAM_SIFTDISPLAY            1076
#define TVK_PARAM_SIFTALG                1077
#define TVK_PARAM_SIFTITLIM              1078
#define TVK_PARAM_MPSLONGNUM             1081
#define TVK_PARAM_MEMORYEMPHASIS         1082
#define TVK_PARAM_NUMERICALEMPHASIS      1083
#define TVK_PARAM_FEASOPTMODE            1084
#define TVK_PARAM_PARALLELMODE           1109
#define TVK_PARAM_TUNINGMEASURE          1110
#define TVK_PARAM_TUNINGREPEAT           1111
#define TVK_PARAM_TUNINGTILIM            1112
#define TVK_PARAM_TUNINGDISPLAY          1113
#define TVK_PARAM_WRITELEVEL             1114
#define TVK_PARAM_PERFVAR_RUNS           1121
#define TVK_PARAM_PERFVAR_DISPLAY        1122
#define TVK_PARAM_PERFVAR_MEASURE        1123
/* Mixed-integer optimizer: 2000-2139 */
#define TVK_PARAM_BRDIR                  2001
#define TVK_PARAM_BTTOL                  2002
#define TVK_PARAM_CLIQUES                2003
#define TVK_PARAM_COEREDIND              2004
#define TVK_PARAM_COVERS                 2005
#define TVK_PARAM_CUTLO                  2006
#define TVK_PARAM_CUTUP                  2007
#define TVK_PARAM_EPAGAP                 2008
#define TVK_PARAM_EPGAP                  2009
#define TVK_PARAM_EPINT                  2010
#define TVK_PARAM_MIPDISPLAY             2012
#define TVK_PARAM_MIPINTERVAL            2013
#define TVK_PARAM_INTSOLLIM              2015
#define TVK_PARAM_NODEFILEIND            2016
#define TVK_PARAM_NODELIM                2017
#define TVK_PARAM_NODESEL                2018
#define TVK_PARAM_OBJDIF                 2019
#define TVK_PARAM_MIPORDIND              2020
#define TVK_PARAM_RELOBJDIF              2022
#define TVK_PARAM_STARTALG               2025
#define TVK_PARAM_SUBALG                 2026
#define TVK_PARAM_TRELIM                 2027
#define TVK_PARAM_VARSEL                 2028
#define TVK_PARAM_BNDSTRENIND            2029
#define TVK_PARAM_HEURFREQ               2031
#define TVK_PARAM_MIPORDTYPE             2032
#define TVK_PARAM_CUTSFACTOR             2033
#define TVK_PARAM_RELAXPREIND            2034
#define TVK_PARAM_PRESLVND               2037
#define TVK_PARAM_BBINTERVAL             2039
#define TVK_PARAM_FLOWCOVERS             2040
#define TVK_PARAM_IMPLBD                 2041
#define TVK_PARAM_PROBE                  2042
#define TVK_PARAM_GUBCOVERS              2044
#define TVK_PARAM_STRONGCANDLIM          2045
#define TVK_PARAM_STRONGITLIM            2046
#define TVK_PARAM_FRACCAND               2048
#define TVK_PARAM_FRACCUTS               2049
#define TVK_PARAM_FRACPASS               2050
#define TVK_PARAM_FLOWPATHS              2051
#define TVK_PARAM_MIRCUTS                2052
#define TVK_PARAM_DISJCUTS               2053
#define TVK_PARAM_AGGCUTLIM              2054
#define TVK_PARAM_MIPCBREDLP             2055
#define TVK_PARAM_CUTPASS                2056
#define TVK_PARAM_MIPEMPHASIS            2058
#define TVK_PARAM_SYMMETRY               2059
#define TVK_PARAM_DIVETYPE               2060
#define TVK_PARAM_RINSHEUR               2061
#define TVK_PARAM_SUBMIPNODELIM          2062
#define TVK_PARAM_LBHEUR                 2063
#define TVK_PARAM_REPEATPRESOLVE         2064
#define TVK_PARAM_PROBETIME              2065
#define TVK_PARAM_POLISHTIME             2066
#define TVK_PARAM_REPAIRTRIES            2067
#define TVK_PARAM_EPRELAX                2073
#define TVK_PARAM_FPHEUR                 2098
#define TVK_PARAM_EACHCUTLIM             2102
#define TVK_PARAM_SOLNPOOLCAPACITY       2103
#define TVK_PARAM_SOLNPOOLREPLACE        2104
#define TVK_PARAM_SOLNPOOLGAP            2105
#define TVK_PARAM_SOLNPOOLAGAP           2106
#define TVK_PARAM_SOLNPOOLINTENSITY      2107
#define TVK_PARAM_POPULATELIM            2108
#define TVK_PARAM_MIPSEARCH              2109
#define TVK_PARAM_MIQCPSTRAT             2110
#define TVK_PARAM_ZEROHALFCUTS           2111
#define TVK_PARAM_POLISHAFTEREPAGAP      2126
#define TVK_PARAM_POLISHAFTEREPGAP       2127
#define TVK_PARAM_POLISHAFTERNODE        2128
#define TVK_PARAM_POLISHAFTERINTSOL      2129
#define TVK_PARAM_POLISHAFTERTIME        2130
#define TVK_PARAM_MCFCUTS                2134
#define TVK_PARAM_MIPKAPPASTATS          2137
#define TVK_PARAM_AUXROOTTHREADS         2139
/* Barrier optimizer: 3001-3034 */
#define TVK_PARAM_BAREPCOMP              3002
#define TVK_PARAM_BARGROWTH              3003
#define TVK_PARAM_BAROBJRNG              3004
#define TVK_PARAM_BARALG                 3007
#define TVK_PARAM_BARCOLNZ               3009
#define TVK_PARAM_BARDISPLAY             3010
#define TVK_PARAM_BARITLIM               3012
#define TVK_PARAM_BARMAXCOR              3013
#define TVK_PARAM_BARORDER               3014
#define TVK_PARAM_BARSTARTALG            3017
#define TVK_PARAM_BARCROSSALG            3018
#define TVK_PARAM_BARQCPEPCOMP           3020
/* Quadratic programs: 4001-4010 */
#define TVK_PARAM_QPNZREADLIM            4001
#define TVK_PARAM_QPMAKEPSDIND           4010
/* Network optimizer: 5001-5005 */
#define TVK_PARAM_NETITLIM               5001
#define TVK_PARAM_NETEPOPT               5002
#define TVK_PARAM_NETEPRHS               5003
#define TVK_PARAM_NETPPRIIND             5004
#define TVK_PARAM_NETDISPLAY             5005

/* Type codes that TVKgetparamtype answers. */
#define TVK_PARAMTYPE_NONE 0   /* no parameter has this number */
#define TVK_PARAMTYPE_INT 1    /* TVKsetintparam, TVKgetintparam, TVKinfointparam */
#define TVK_PARAMTYPE_DOUBLE 2 /* TVKsetdblparam, TVKgetdblparam, TVKinfodblparam */
#define TVK_PARAMTYPE_STRING 3 /* TVKsetstrparam, TVKgetstrparam, TVKinfostrparam */

/* Sizes of caller's buffers, terminating zero included. */
#define TVK_STR_PARAM_MAX 512  /* TVKgetstrparam, TVKinfostrparam; texts set have at most 511 bytes */
#define TVK_PARAM_NAME_MAX 64  /* TVKgetparamname */
#define TVK_PARAM_DESC_MAX 256 /* TVKgetparamdesc */

/* Every routine of this section returns 0, or 1002 for a bad environment, 1804 from inside an info callback, 1013 for a
 * number that is no parameter (of the routine's type), 1004 for a null argument that is not optional, or what stands
 * with it. A failed routine changes nothing. Settings belong to one environment; do not change them while an
 * optimization runs in it. Numbers without a name are internal switches: they can be set, but are never listed.
 * Double parameters whose minimum equals their maximum take any value.
 *
 *   TVKsetintparam (env, TVK_PARAM_ITLIM, 5000);
 *   TVKsetdblparam (env, TVK_PARAM_TILIM, 60.0); */

/* Set a value. 1014 and 1015: value below or above the range; 1026: text longer than 511 bytes; 1807: polishing is to
 * start both by its own time (TVK_PARAM_POLISHTIME) and by one of the TVK_PARAM_POLISHAFTER conditions.
 * TVK_PARAM_SCRIND connects (1) and disconnects (0) standard output with the results, warning and error channels. */
TVK_API int TVKsetintparam(EnvHandle env, int number, int value);
TVK_API int TVKsetdblparam(EnvHandle env, int number, double value);
TVK_API int TVKsetstrparam(EnvHandle env, int number, const char *text);

/* Current value; buffer holds TVK_STR_PARAM_MAX bytes. */
TVK_API int TVKgetintparam(ConstEnvHandle env, int number, int *value_p);
TVK_API int TVKgetdblparam(ConstEnvHandle env, int number, double *value_p);
TVK_API int TVKgetstrparam(ConstEnvHandle env, int number, char *buffer);

/* Default and range; each output may be null. default_text holds TVK_STR_PARAM_MAX bytes. The largest thread counts
 * depend on the machine. */
TVK_API int TVKinfointparam(ConstEnvHandle env, int number, int *default_p, int *min_p, int *max_p);
TVK_API int TVKinfodblparam(ConstEnvHandle env, int number, double *default_p, double *min_p, double *max_p);
TVK_API int TVKinfostrparam(ConstEnvHandle env, int number, char *default_text);

/* Name of a number, TVK_PARAM_NAME_MAX bytes: "TVK_PARAM_ITLIM" for 1020; empty for a number without a name. */
TVK_API int TVKgetparamname(ConstEnvHandle env, int number, char *name);

/* Number of an exact name, or 1028 and -1 for a name that there is not. */
TVK_API int TVKgetparamnum(ConstEnvHandle env, const char *name, int *number_p);

/* One of TVK_PARAMTYPE_..; type_p may be null. */
TVK_API int TVKgetparamtype(ConstEnvHandle env, int number, int *type_p);

/* What the parameter does, one line of less than TVK_PARAM_DESC_MAX bytes; it says so when a parameter is only stored.
 * Empty for a number without a name. */
TVK_API int TVKgetparamdesc(ConstEnvHandle env, int number, char *buffer);

/* Numbers of the named parameters that differ from their defaults, ascending. Stores at most `space` of them, their
 * count in *count_p and in *surplus_p space minus the number of changed ones. 1207 if that is negative; with space 0
 * (numbers may be null then) this 1207 prints no message, and -surplus numbers are wanted:
 *
 *   int count, surplus;
 *   TVKgetchgparam (env, &count, NULL, 0, &surplus); */
TVK_API int TVKgetchgparam(ConstEnvHandle env, int *count_p, int *numbers, int space, int *surplus_p);

/* Every parameter back to its default, standard output disconnected, the random seed renewed. */
TVK_API int TVKsetdefaults(EnvHandle env);

/* ==== Section: models, copy, modification, names, query (model/) ==== */

/* ==== Section: files (fileio/) ==== */

/* ==== Section: optimizers, bases, rays, sensitivity, quality (lp/dispatch/) ==== */

/* ==== End of sections ==== */

#ifdef __cplusplus
}
#endif
#endif
