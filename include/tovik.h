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

/* ==== Section: models, copy, modification, names, query (model/) ==== */

/* ==== Section: files (fileio/) ==== */

/* ==== Section: optimizers, bases, rays, sensitivity, quality (lp/dispatch/) ==== */

/* ==== End of sections ==== */

#ifdef __cplusplus
}
#endif
#endif
