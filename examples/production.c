/* Builds a small production plan through the interface, solves it, and prints what the planner wants to know.
 *
 *   cc -std=c99 production.c -o production $(pkg-config --cflags --libs tovik) && ./production
 *
 * Four quarters; in each: units made, units made in overtime, units kept for the next quarter. The demand of
 * a quarter is met by what is made in it and what was kept before. The file production.lp holds the same
 * model. */
#include <stdio.h>
#include <tovik.h>

enum { QUARTERS = 4, MAKE = 0, OVER = 1, KEEP = 2, KINDS = 3 };

static const double demand[QUARTERS] = {80, 110, 160, 140};
static const double cost[KINDS][QUARTERS] = {{20, 20, 22, 22}, {30, 30, 33, 33}, {1.5, 1.5, 1.5, 0}};
static const double most[KINDS][QUARTERS] = {{120, 120, 120, 100}, {20, 20, 30, 30}, {60, 60, 60, 0}};
static char* const kind_name[KINDS] = {"make", "over", "keep"};

static int column(int kind, int quarter) {
  return kind * QUARTERS + quarter;
}

/* One row for each quarter's demand, then one column for each kind and quarter with its entries. */
static int build(EnvHandle env, ProbHandle lp) {
  char sense[QUARTERS];
  char text[16];
  char* name = text;
  int code, kind, quarter;
  for (quarter = 0; quarter < QUARTERS; ++quarter) sense[quarter] = 'E';
  code = TVKnewrows(env, lp, QUARTERS, demand, sense, NULL, NULL);
  for (kind = 0; code == 0 && kind < KINDS; ++kind) {
    for (quarter = 0; code == 0 && quarter < QUARTERS; ++quarter) {
      const int begin = 0;
      const int rows[2] = {quarter, quarter + 1};
      const double values[2] = {kind == KEEP ? -1.0 : 1.0, 1.0};
      const int entries = kind == KEEP && quarter + 1 < QUARTERS ? 2 : 1;
      const double low = 0;
      sprintf(text, "%s_%d", kind_name[kind], quarter + 1);
      code = TVKaddcols(env, lp, 1, entries, &cost[kind][quarter], &begin, rows, values, &low,
                        &most[kind][quarter], &name);
    }
  }
  return code;
}

static void print_plan(double total, const double* x, const double* price) {
  int quarter;
  printf("Least cost: %g\n\n", total);
  printf("%8s %8s %8s %8s %8s  %s\n", "quarter", "demand", "make", "overtime", "keep",
         "one more unit would cost");
  for (quarter = 0; quarter < QUARTERS; ++quarter) {
    printf("%8d %8g %8g %8g %8g  %g\n", quarter + 1, demand[quarter], x[column(MAKE, quarter)],
           x[column(OVER, quarter)], x[column(KEEP, quarter)], price[quarter]);
  }
}

int main(void) {
  double x[KINDS * QUARTERS], price[QUARTERS], total = 0;
  int code = 0, status = 0;
  EnvHandle env = TVKopenTOVIK(&code);
  ProbHandle lp = NULL;
  if (env == NULL) return 1;
  TVKsetintparam(env, TVK_PARAM_SCRIND, 1); /* messages on the screen */
  TVKsetintparam(env, TVK_PARAM_SIMDISPLAY, 0);

  lp = TVKcreateprob(env, &code, "production");
  if (code == 0) code = build(env, lp);
  if (code == 0) code = TVKlpopt(env, lp);
  if (code == 0) code = TVKsolution(env, lp, &status, &total, x, price, NULL, NULL);
  if (code == 0 && status == TVK_STATUS_OPTIMAL) {
    print_plan(total, x, price);
  } else {
    printf("No plan: code %d, status %d\n", code, status);
  }
  TVKfreeprob(env, &lp);
  TVKcloseTOVIK(&env);
  return code == 0 && status == TVK_STATUS_OPTIMAL ? 0 : 1;
}
