# The map as a plot, with the colours and markers of the chart page.

# Okabe and Ito's eight colours, told apart with any colour vision. Their yellow is darkened, since it
# would vanish on white.
page_colours <- c(
  "#0072b2", "#d55e00", "#009e73", "#cc79a7", "#e69f00", "#56b4e9", "#a39200", "#333333"
)

# Circle, triangle, square, diamond, downward triangle, plus, cross, star.
page_markers <- c(16, 17, 15, 18, 25, 3, 4, 8)

# Colour and marker of each of `count` labels: the first eight differ in both, the first 64 in one.
label_styles <- function(count) {
  index <- (seq_len(count) - 1) %% 64
  data.frame(
    col = page_colours[index %% 8 + 1],
    pch = page_markers[(index + index %/% 8) %% 8 + 1]
  )
}

plot.ovik_tsne <- function(x, components = c(1, 2), labels = x$labels, legend = "topright",
                           xlab = paste("Component", components[1]),
                           ylab = paste("Component", components[2]),
                           asp = 1, cex = 0.7, ...) {
  if (!is.numeric(components) || length(components) != 2 || !all(components %in% seq_len(ncol(x$Y)))) {
    stop(
      sprintf("components should be two of the %d that the map has, not %s", ncol(x$Y), shown(components)),
      call. = FALSE
    )
  }
  points <- unname(x$Y[, components])
  if (is.null(labels)) {
    graphics::plot.default(
      points, xlab = xlab, ylab = ylab, asp = asp, cex = cex, pch = page_markers[1],
      col = page_colours[1], ...
    )
    return(invisible(x))
  }

  labels <- droplevels(checked_labels(labels, x$Y))
  if (anyNA(labels)) {
    levels(labels) <- c(levels(labels), "(no label)")
    labels[is.na(labels)] <- "(no label)"
  }
  styles <- label_styles(nlevels(labels))
  # Small groups are drawn over large ones.
  of_row <- as.integer(labels)
  drawn <- order(-tabulate(of_row, nlevels(labels))[of_row])
  style <- styles[of_row[drawn], ]
  graphics::plot.default(
    points[drawn, ], xlab = xlab, ylab = ylab, asp = asp, cex = cex, pch = style$pch, col = style$col,
    bg = style$col, ...
  )
  if (!identical(legend, FALSE)) {
    graphics::legend(
      legend, legend = levels(labels), col = styles$col, pt.bg = styles$col, pch = styles$pch, bty = "n"
    )
  }
  invisible(x)
}
