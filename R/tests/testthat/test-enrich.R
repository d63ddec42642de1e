test_that("the least likely term comes first", {
  terms <- enrich(c("HSP104", "ssa1", "YMR186W", "Hsp82p"))
  expect_equal(terms$term[1], "GO:0051082")
  expect_equal(terms$name[1], "unfolded protein binding")
  expect_equal(terms$aspect[1], "function")
  expect_equal(terms$genes[1], "SSA1 HSP104 HSC82 HSP82")
  expect_equal(terms, enrich("HSP104, ssa1\nYMR186W Hsp82p"))
})

test_that("chances and rates are those of R", {
  terms <- enrich(c("COX4", "COX5A", "QCR2", "ATP1", "CIT1", "nonsense"))
  p <- with(terms, phyper(hits - 1, size, total - size, drawn, lower.tail = FALSE))
  expect_equal(terms$p, p, tolerance = 1e-12)
  expect_equal(terms$q, p.adjust(p, "BH", n = attr(terms, "tested")), tolerance = 1e-12)
  expect_equal(terms$fold, with(terms, hits / drawn / (size / total)))
  expect_equal(attr(terms, "not_found"), "nonsense")
})

test_that("the background may be names, a matrix or a map", {
  names <- c("CLN1", "CLN2", "ENO1", "ENO2", "YAL069W")
  terms <- enrich(c("CLN1", "CLN2", "HSP104"), names)
  expect_equal(terms$p[1], 1 / 6)
  expect_equal(attr(terms, "outside"), "HSP104")
  expect_equal(enrich(c("CLN1", "CLN2", "HSP104"), matrix(1:10, 5, dimnames = list(names, NULL))), terms)
})

test_that("what has nothing to test is refused", {
  expect_error(enrich(c("TP53", "x")), "none of the 2 names is that of one gene of yeast")
  expect_error(enrich("YAL069W"), "none of the genes is in a GO slim term")
  expect_error(enrich(7), "genes should be names of genes")
  expect_error(enrich("CLN1", "CLN2"), "and in background")
  expect_warning(enrich(c("CLN1", "x", "y")), "2 of 3 names are not found: x, y")
})
