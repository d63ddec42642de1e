library(testthat)
library(ovik)

test_check("ovik")
