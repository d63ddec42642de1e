# Completion of ovik-tsne for bash.

_ovik_tsne() {
  local current=$2 previous=$3
  COMPREPLY=()
  # Names and words may hold blanks: one of them a line.
  local IFS=$'\n'
  case $previous in
    --delimiter) COMPREPLY=($(compgen -W $'tab\ncomma\nsemicolon\nspace' -- "$current")) ;;
    --missing)
      COMPREPLY=($(compgen -W $'zero\nrow-mean\ncolumn-mean\ndrop\nerror' -- "$current"))
      ;;
    --names) COMPREPLY=($(compgen -W $'file\nstandard' -- "$current")) ;;
    --precision) COMPREPLY=($(compgen -W $'double\nfloat' -- "$current")) ;;
    --coordinates) COMPREPLY=($(compgen -W $'tsv\nnpy\ntsv,npy' -- "$current")) ;;
    -o | --out-dir) COMPREPLY=($(compgen -d -- "$current")) ;;
    -p | --perplexity | -t | --theta | -d | --dims | -i | --max-iter | -j | --threads | \
      --stop-lying-iter | --mom-switch-iter | --checkpoint-every | -n | --name | --suffix | \
      --title | --gene) ;;
    *)
      if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "$(ovik-tsne --help | grep -oE '^  (-[a-z],)?--[a-z-]+' |
          tr -d ' ' | tr ',' '\n')" -- "$current"))
      else
        compopt -o filenames
        COMPREPLY=($(compgen -f -- "$current"))
      fi
      ;;
  esac
}

complete -F _ovik_tsne ovik-tsne
