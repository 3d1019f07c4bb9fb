"""Parts of bench/run: models, solvers, report."""
