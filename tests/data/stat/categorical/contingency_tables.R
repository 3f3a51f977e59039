# The tables of the contingency-table references, shared by
# make_contingency_chisq.R and (through contingency_tables.txt, which this
# file writes when run as a script) make_contingency_measures.py.
# Run:  Rscript contingency_tables.R   (writes contingency_tables.txt)
tables <- list(
  hair_eye = apply(HairEyeColor, c(1, 2), sum),        # 4 x 4
  admit_dept = apply(UCBAdmissions, c(1, 3), sum),     # 2 x 6
  class_survived = apply(Titanic, c(1, 4), sum),       # 4 x 2
  sex_admit = t(apply(UCBAdmissions, c(1, 2), sum)),   # 2 x 2
  # Two raters sorting 100 subjects into three categories (made up).
  raters = matrix(c(44, 5, 1, 7, 20, 3, 9, 5, 6), 3, 3, byrow = TRUE),
  # Fractional counts, three rows by four columns.
  fractional = matrix(c(2.5, 4, 1.25, 6, 3, 0.5, 7, 2, 5.5, 3, 1, 4.75), 3, 4, byrow = TRUE),
  # A total of 3: no exact moments of X^2.
  total_three = matrix(c(1, 0.5, 0.5, 1), 2, 2)
)
if (sys.nframe() == 0) {
  out <- file("contingency_tables.txt", "w")
  for (name in names(tables)) {
    x <- tables[[name]]
    writeLines(paste(name, nrow(x), ncol(x), paste(sprintf("%.17g", t(x)), collapse = " ")), out)
  }
  close(out)
}
