# What the tests share. Those that need the command, or files of the project that are no part of the
# package, run where the environment says where they are.

excerpt <- function() {
  table <- read.delim(system.file("extdata", "brauer2008_excerpt.tsv", package = "ovik"), row.names = 1)
  list(x = as.matrix(table[, -1]), labels = table$label)
}

# A matrix of three groups of rows.
groups <- function(rows = 60, columns = 4) {
  matrix(10 * (seq_len(rows) %% 3) + sin(seq_len(rows * columns)), rows, columns)
}

bare <- function(Y) {
  dimnames(Y) <- NULL
  Y
}

# A file that the project has beside the package.
project_file <- function(path) {
  project <- Sys.getenv("OVIK_PROJECT_DIR")
  skip_if(project == "", "OVIK_PROJECT_DIR is not set")
  file.path(project, path)
}

write_npy <- function(x, path) {
  header <- sprintf("{'descr': '<f8', 'fortran_order': False, 'shape': (%d, %d), }", nrow(x), ncol(x))
  header <- paste0(header, strrep(" ", 117 - nchar(header)), "\n")
  file <- file(path, "wb")
  on.exit(close(file))
  writeBin(as.raw(c(0x93, utf8ToInt("NUMPY"), 1, 0)), file)
  writeBin(nchar(header), file, size = 2, endian = "little")
  writeBin(charToRaw(header), file)
  writeBin(as.vector(t(x)), file, endian = "little")
}

read_npy <- function(path, columns) {
  bytes <- readBin(path, "raw", file.size(path))
  start <- 10 + sum(as.integer(bytes[9:10]) * c(1, 256))
  values <- readBin(bytes[-seq_len(start)], "double", length(bytes) / 8, endian = "little")
  matrix(values, ncol = columns, byrow = TRUE)
}

# The coordinates that the command gives, to the last bit.
embed_by_command <- function(path, ..., dims = 2) {
  command <- Sys.getenv("OVIK_TSNE")
  skip_if(command == "", "OVIK_TSNE is not set")
  folder <- tempfile("run")
  status <- system2(
    command,
    c(path, "--no-plots", "--quiet", "--coordinates", "npy", "--name", "run", "--out-dir", folder, "--dims", dims, ...),
    stdout = FALSE, stderr = FALSE
  )
  stopifnot(status == 0)
  read_npy(list.files(folder, "[.]npy$", full.names = TRUE), dims)
}
