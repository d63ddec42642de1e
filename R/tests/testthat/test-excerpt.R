# The excerpt that examples and vignette use is what its README says.

test_that("the excerpt is every 16th gene, and every fourth of those with a label", {
  rows <- strsplit(readLines(project_file("data/brauer2008_chemostat.tsv")), "\t", fixed = TRUE)
  labels <- readLines(project_file("data/brauer2008_labels.txt"))
  number <- seq_along(labels) - 1
  taken <- number %% 16 == 0 | (labels != "other" & number %% 4 == 0)
  expected <- Map(append, rows[c(TRUE, taken)], c("label", labels[taken]), after = 1)
  path <- system.file("extdata", "brauer2008_excerpt.tsv", package = "ovik")
  expect_identical(readLines(path), vapply(expected, paste, "", collapse = "\t"))
  expect_identical(dim(excerpt()$x), c(481L, 36L))
})
