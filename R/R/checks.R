# What is refused before a fit. Every refusal says what is wrong, where, and what to do.

refuse <- function(what, cure) stop(what, "\n", cure, call. = FALSE)

# Arguments that no method knows: a misspelt option would otherwise go unheard.
refuse_others <- function(...) {
  given <- names(list(...))
  if (length(list(...)) == 0) return(invisible())
  if (is.null(given) || any(given == "")) {
    refuse("arguments behind x and perplexity have to be named", "See ?tsne for their names.")
  }
  known <- setdiff(names(formals(tsne.matrix)), c("x", "..."))
  distance <- utils::adist(given[1], known, ignore.case = TRUE)
  refuse(
    sprintf("tsne() has no argument '%s'", given[1]),
    if (min(distance) <= 3) {
      sprintf("Is '%s' meant?", known[which.min(distance)])
    } else {
      "See ?tsne for those that it has."
    }
  )
}

is_one_number <- function(value) is.numeric(value) && length(value) == 1 && !is.na(value)

shown <- function(value) paste(utils::head(deparse(value), 1), collapse = "")

# What an option may be as the library takes it: NULL, one text, numbers without NA.
is_plain <- function(value) {
  is.null(value) || (is.character(value) && length(value) == 1 && !is.na(value)) ||
    (is.numeric(value) && length(value) > 0 && !anyNA(value))
}

check_options <- function(options) {
  for (name in names(options)) {
    value <- options[[name]]
    if (!is_plain(value) || !.Call(C_option_holds, name, bare_value(value))) {
      stop(sprintf("%s should be %s, not %s", name, requirements[[name]], shown(value)), call. = FALSE)
    }
  }
}

bare_value <- function(value) if (is.numeric(value)) as.double(value) else value

# The coordinates of a start as a plain matrix in the order of the rows of x, NA in rows that it has not;
# NULL where `start` is a name. Rows are found by name where both have names.
checked_start <- function(start, x, dims) {
  if (!is.matrix(start)) return(NULL)
  if (!is.numeric(start) || is.object(start)) {
    refuse(sprintf("start is a matrix of '%s'", class(start[1])), "Give a matrix of plain numbers.")
  }
  if (!is.null(rownames(start)) && !is.null(rownames(x))) {
    twice <- rownames(start)[duplicated(rownames(start))]
    if (length(twice) > 0) refuse(sprintf("start has the row '%s' twice", twice[1]), "Give each name one row.")
    start <- start[match(rownames(x), rownames(start)), , drop = FALSE]
  }
  if (!identical(dim(start), c(nrow(x), as.integer(dims)))) {
    refuse(
      sprintf("start has %d rows and %d columns, and the map has %d and %d", nrow(start), ncol(start), nrow(x), dims),
      "Give a place for every row of x, or names for the rows of both."
    )
  }
  missing <- rowSums(is.na(start))
  broken <- missing != 0 & missing != ncol(start) | rowSums(is.infinite(start)) > 0
  if (any(broken)) {
    refuse(
      sprintf("start has coordinates in row %d that are not finite", which(broken)[1]),
      "Give all of a place, or NA for all of it: the row starts at the median of its neighbours then."
    )
  }
  if (all(missing > 0)) {
    refuse("start has a place for none of the rows of x", "Compare rownames(start) with rownames(x).")
  }
  storage.mode(start) <- "double"
  start
}

check_preset <- function(preset) {
  if (!identical(preset, "classic") && !identical(preset, "refined")) {
    stop(sprintf("preset should be \"classic\" or \"refined\", not %s", shown(preset)), call. = FALSE)
  }
}

check_flag <- function(name, value) {
  if (!is.logical(value) || length(value) != 1 || is.na(value)) {
    stop(sprintf("%s should be TRUE or FALSE, not %s", name, shown(value)), call. = FALSE)
  }
}

# The number of threads as the engine takes it: 0 for one per core.
checked_threads <- function(threads) {
  if (is.null(threads)) return(0L)
  if (!is_one_number(threads) || threads < 1 || threads > 1e6 || threads != round(threads)) {
    refuse(
      sprintf("threads should be a whole number from 1 to 1000000, not %s", shown(threads)),
      "NULL stands for one per core."
    )
  }
  as.integer(threads)
}

# A data frame as a matrix of numbers. What is no plain number is refused: numbers behind a class, as
# those of factors and dates, are codes.
matrix_of_table <- function(x) {
  plain <- vapply(x, function(column) {
    (is.numeric(column) || is.logical(column)) && !is.object(column) && is.null(dim(column))
  }, NA)
  if (!all(plain)) {
    others <- names(x)[!plain]
    kind <- class(x[[which(!plain)[1]]])[1]
    count <- length(others)
    refuse(
      sprintf(
        "column '%s' of x is no column of numbers but '%s'%s", others[1], kind,
        if (count > 1) paste0(" (", count, " such columns, also '", others[2], "')") else ""
      ),
      sprintf(
        paste(
          "Leave such columns out, or make the names of the rows of one and take it out then:",
          "rownames(x) <- x$%1$s; x$%1$s <- NULL."
        ),
        others[1]
      )
    )
  }
  values <- as.matrix(as.data.frame(x))
  if (.row_names_info(x) < 0) rownames(values) <- NULL
  values
}

check_values <- function(x) {
  if (!is.numeric(x) && !is.logical(x)) {
    refuse(
      sprintf("x should be a matrix of numbers, and is one of '%s'", typeof(x)),
      "Names of rows belong into rownames(x); read.delim(file, row.names = 1) reads them so."
    )
  }
  if (is.object(x)) {
    refuse(sprintf("x is a matrix of class '%s'", class(x)[1]), "Give as plain numbers: unclass(x).")
  }
  if (nrow(x) < 3 || ncol(x) < 1) {
    refuse(
      sprintf("x has %d rows and %d columns, and a map needs at least 3 rows and 1 column", nrow(x), ncol(x)),
      "Rows are what is embedded: t(x) turns a matrix whose columns are."
    )
  }
  check_finite(x)
  check_scale(x)
}

# What the metric cannot compare.
check_metric <- function(x, metric) {
  if (metric == "precomputed") {
    check_distances(x)
  } else {
    check_variation(x, metric)
    warn_of_row_numbers(x)
  }
}

# Rows that have no correlation with others: the library refuses them too, by their numbers alone.
check_variation <- function(x, metric) {
  if (metric == "euclidean") return(invisible())
  is_flat <- apply(x, 1, function(row) if (metric == "cosine") all(row == 0) else all(row == row[1]))
  if (!any(is_flat)) return(invisible())
  rows <- which(is_flat)
  listed <- vapply(utils::head(rows, 3), function(row) as.character(place(row, rownames(x))), "")
  refuse(
    sprintf(
      "%d %s no %s with any other, since the values %s: row %s%s",
      length(rows), if (length(rows) == 1) "row has" else "rows have",
      if (metric == "cosine") "cosine" else "correlation",
      if (metric == "cosine") "are all 0" else "do not vary",
      paste(listed, collapse = ", "), if (length(rows) > 3) ", ..." else ""
    ),
    "Leave such rows out, or give metric = \"euclidean\"."
  )
}

# What is no matrix of distances. Rounding may leave 1e-10 of the largest, and on the diagonal
# 1e-6, the root of it.
check_distances <- function(x) {
  if (nrow(x) != ncol(x)) {
    refuse(
      sprintf("x has %d rows and %d columns: a matrix of distances is square", nrow(x), ncol(x)),
      "Give the distances of all rows from all rows, or the values themselves with another metric."
    )
  }
  if (!is.null(rownames(x)) && !is.null(colnames(x)) && any(rownames(x) != colnames(x))) {
    other <- which(rownames(x) != colnames(x))[1]
    refuse(
      sprintf("row %d of x is '%s', and column %d is '%s'", other, rownames(x)[other], other, colnames(x)[other]),
      "In a matrix of distances the columns are the rows once more, in the same order."
    )
  }
  rounding <- 1e-10 * max(x)
  refuse_distance <- function(bad, what, cure) {
    if (!any(bad)) return(invisible())
    at <- which(bad, arr.ind = TRUE)[1, ]
    refuse(
      sprintf(
        "the distance of x in row %s, column %s is %s%s", place(at[1], rownames(x)), place(at[2], colnames(x)),
        format(x[at[1], at[2]], digits = 15), what(at)
      ),
      cure
    )
  }
  no_similarities <- "Distances are needed, not similarities: 1 - r makes one of a correlation."
  refuse_distance(x < -rounding, function(at) ", below 0", no_similarities)
  refuse_distance(
    row(x) == col(x) & x > 1e4 * rounding, function(at) ", and not 0: that of the row from itself", no_similarities
  )
  refuse_distance(
    abs(x - t(x)) > rounding,
    function(at) sprintf(", and %s the other way round", format(x[at[2], at[1]], digits = 15)),
    "Distances are the same both ways: give the mean of both, (x + t(x)) / 2."
  )
}

# Files that were written with the numbers of the rows have them as their first column.
warn_of_row_numbers <- function(x) {
  if (all(x[, 1] - x[1, 1] == seq_len(nrow(x)) - 1)) {
    warning(
      sprintf("column %s of x counts the rows, and is embedded as if it were measured\n", place(1, colnames(x))),
      "Leave it out unless it is: x[, -1].",
      call. = FALSE
    )
  }
}

# "5 ('YAL001C')": the name shows where there is one.
place <- function(index, names) {
  if (is.null(names)) index else sprintf("%d ('%s')", index, names[index])
}

check_finite <- function(x) {
  bad <- which(!is.finite(x))
  if (length(bad) == 0) return(invisible())
  rows <- (bad - 1) %% nrow(x) + 1
  columns <- (bad - 1) %/% nrow(x) + 1
  first <- order(rows, columns)[1]
  refuse(
    sprintf(
      "x has %s in row %s, column %s%s", format(x[bad[first]]), place(rows[first], rownames(x)),
      place(columns[first], colnames(x)),
      if (length(bad) > 1) sprintf(" (%d such values in all)", length(bad)) else ""
    ),
    "Fill such values in, for example by the means of their rows, or leave the rows out: na.omit(x)."
  )
}

# The engine adds up columns and divides by the largest deviation from their means: both have to be
# numbers that a double can hold.
check_scale <- function(x) {
  largest <- 1e300
  if (max(abs(x)) > largest) {
    refuse(
      "the values of x are too large to be computed with",
      "Bring them to a common scale, for example by logarithms."
    )
  }
  widest <- max(apply(x, 2, function(column) max(column) - min(column)))
  if (widest == 0) {
    refuse("all rows of x hold the same values, so there is nothing to embed", "Check what x holds.")
  }
  if (widest < 1 / largest) {
    refuse(
      "the values of x are too close to one another to be computed with",
      "Bring them to a common scale, for example by logarithms."
    )
  }
}

check_perplexity <- function(perplexity, rows) {
  others <- rows - 1
  if (perplexity >= others) {
    refuse(
      sprintf(
        "perplexity = %g: each of %d rows has %d others, so it cannot have as many neighbours or more",
        perplexity, rows, others
      ),
      "Give at most a third of that; 5 to 50 are usual."
    )
  }
  if (3 * perplexity > others) {
    warning(
      sprintf(
        "perplexity = %g is large for %d rows: it should be at most a third of the other rows, %.1f",
        perplexity, rows, others / 3
      ),
      call. = FALSE
    )
  }
}

# A label for each row of x, as a factor: its levels are as they were, or in the order in which the
# labels appear. NULL if there are none.
checked_labels <- function(labels, x) {
  if (is.null(labels)) return(NULL)
  if (!is.atomic(labels) || !is.null(dim(labels))) {
    refuse(
      sprintf("labels should be a vector or a factor, not of class '%s'", class(labels)[1]),
      "A column of a data frame is table$column."
    )
  }
  if (length(labels) != nrow(x)) {
    refuse(
      sprintf("there are %d labels for %d rows of x", length(labels), nrow(x)),
      "Give one label per row, in the order of the rows."
    )
  }
  labels <- in_order_of_rows(labels, rownames(x))
  if (is.factor(labels)) labels else factor(labels, levels = unique(labels[!is.na(labels)]))
}

# Labels that have names go by them.
in_order_of_rows <- function(labels, rows) {
  if (is.null(names(labels)) || is.null(rows)) return(unname(labels))
  missing <- setdiff(rows, names(labels))
  if (length(missing)) {
    refuse(
      sprintf("labels have names, and none is that of row '%s' of x (%d such rows)", missing[1], length(missing)),
      "unname(labels) takes them by their order."
    )
  }
  if (anyDuplicated(rows) || anyDuplicated(names(labels))) {
    if (!identical(rows, names(labels))) {
      refuse(
        "labels have names that occur more than once, and are not in the order of the rows of x",
        "unname(labels) takes them by their order."
      )
    }
    return(unname(labels))
  }
  unname(labels[rows])
}
