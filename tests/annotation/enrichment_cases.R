# Overlaps of sets of genes, with what R makes of them: phyper(lower.tail = FALSE) and p.adjust("BH").
#
#   Rscript enrichment_cases.R write FILE       writes the cases that tests compare with where there is no R
#   Rscript enrichment_cases.R check PROGRAM    holds a program to R in many more: it reads lines of hits, size,
#                                               drawn and total and prints p and q of each

# Rounding that adds up over the thousands of steps which the least likely overlaps take.
tolerance <- 1e-12
# Below it R and the program run out of digits.
smallest <- 1e-300

largest <- 7000

overlap <- function(hits, size, drawn, total) {
  data.frame(hits = hits, size = size, drawn = drawn, total = total)
}

# Sets of any sizes, and overlaps from the most usual ones to those at the ends.
random_overlap <- function() {
  total <- floor(largest^sqrt(runif(1)))
  size <- sample(0:total, 1)
  drawn <- sample(0:total, 1)
  if (runif(1) < 0.5) {
    size <- min(size, sample(c(3, 30, 300), 1))
    drawn <- min(drawn, sample(c(5, 50, 500), 1))
  }
  least <- max(0, size + drawn - total)
  most <- min(size, drawn)
  hits <- switch(sample(4, 1),
    qhyper(10^-runif(1, 0, 15), size, total - size, drawn, lower.tail = FALSE),
    qhyper(runif(1), size, total - size, drawn),
    sample(c(least, least + 1, most - 1, most), 1),
    sample(least:most, 1)
  )
  overlap(min(max(hits, 0), most), size, drawn, total)
}

edges <- rbind(
  overlap(0, 0, 0, 0), overlap(0, 0, 0, 1), overlap(0, 1, 0, 1), overlap(0, 0, 1, 1), overlap(1, 1, 1, 1),
  overlap(1, 1, 1, 2), overlap(0, 1, 1, 2), overlap(2, 2, 2, 6600), overlap(6600, 6600, 6600, 6600),
  overlap(3300, 3300, 3300, 6600), overlap(1650, 3300, 3300, 6600), overlap(1651, 3300, 3300, 6600),
  overlap(40, 41, 60, 5000), overlap(1, 6599, 1, 6600), overlap(150, 150, 300, 6600)
)

# Overlaps of large sets, up to 37 standard deviations above the mean.
unlikely_overlap <- function() {
  total <- sample(2000:largest, 1)
  size <- sample(200:floor(total / 2), 1)
  drawn <- sample(200:floor(total / 2), 1)
  share <- size / total
  deviation <- sqrt(drawn * share * (1 - share) * (total - drawn) / (total - 1))
  hits <- round(drawn * share + runif(1, 8, 37) * deviation)
  overlap(min(hits, size, drawn), size, drawn, total)
}

cases <- function(count) {
  some <- lapply(seq_len(count), function(i) if (i %% 5 == 0) unlikely_overlap() else random_overlap())
  rbind(edges, do.call(rbind, some))
}

with_answers <- function(cases) {
  cases$p <- phyper(cases$hits - 1, cases$size, cases$total - cases$size, cases$drawn, lower.tail = FALSE)
  cases$q <- p.adjust(cases$p, "BH")
  cases
}

# How far apart numbers are, as a share of the expected ones.
distance <- function(found, expected) {
  counts <- expected > smallest
  stopifnot(sum(counts) > length(expected) / 2, all(found[!counts] <= 2 * smallest))
  max(abs(found[counts] / expected[counts] - 1))
}

write_cases <- function(file) {
  set.seed(20)
  answers <- with_answers(cases(400))
  answers$p <- sprintf("%.17g", answers$p)
  answers$q <- sprintf("%.17g", answers$q)
  write.table(answers, file, sep = "\t", quote = FALSE, row.names = FALSE)
}

check_program <- function(program) {
  set.seed(21)
  answers <- with_answers(cases(6000))
  input <- tempfile()
  write.table(answers[1:4], input, quote = FALSE, row.names = FALSE, col.names = FALSE)
  found <- read.table(text = system2(program, stdin = input, stdout = TRUE), col.names = c("p", "q"))
  stopifnot(nrow(found) == nrow(answers))
  apart <- c(p = distance(found$p, answers$p), q = distance(found$q, answers$q))
  cat(nrow(answers), "cases,", sum(answers$p > smallest & answers$p < 1e-200), "of them between 1e-300 and 1e-200;",
      "farthest apart:", format(apart), "\n")
  stopifnot(apart < tolerance)
}

arguments <- commandArgs(trailingOnly = TRUE)
switch(arguments[1], write = write_cases(arguments[2]), check = check_program(arguments[2]))
