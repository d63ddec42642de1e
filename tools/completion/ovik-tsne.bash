# Completion of ovik-tsne for bash.

_ovik_tsne() {
  local current=$2 previous=$3
  COMPREPLY=()
  # Names and words may hold blanks: one of them a line.
  local IFS=$'\n'
  case $previous in
    --delimiter) COMPREPLY=($(compgen -W $'tab\ncomma\nsemicolon\nspace' -- "$current")) ;;
    --decimal) COMPREPLY=($(compgen -W $'.\n,' -- "$current")) ;;
    --missing)
      COMPREPLY=($(compgen -W $'zero\nrow-mean\ncolumn-mean\ndrop\nerror' -- "$current"))
      ;;
    --figure-size)
      COMPREPLY=($(compgen -W $'single\ndouble\n120mm\n89x60mm\n1200x900' -- "$current"))
      ;;
    --names) COMPREPLY=($(compgen -W $'file\nstandard\nother' -- "$current")) ;;
    --annotated) COMPREPLY=($(compgen -W tsv -- "$current")) ;;
    --center) COMPREPLY=($(compgen -W $'rows\ncolumns' -- "$current")) ;;
    --constant-rows) COMPREPLY=($(compgen -W $'refuse\ndrop' -- "$current")) ;;
    --page-data) COMPREPLY=($(compgen -W $'none\nsmall\nfull' -- "$current")) ;;
    --precision) COMPREPLY=($(compgen -W $'double\nfloat' -- "$current")) ;;
    --preset) COMPREPLY=($(compgen -W $'classic\nrefined' -- "$current")) ;;
    --method) COMPREPLY=($(compgen -W $'auto\nbarnes-hut\nmesh\nexact' -- "$current")) ;;
    --neighbour-search) COMPREPLY=($(compgen -W $'exact\napproximate' -- "$current")) ;;
    --metric)
      COMPREPLY=($(compgen -W $'euclidean\npearson\ncosine\nspearman\nprecomputed' -- "$current"))
      ;;
    --affinity) COMPREPLY=($(compgen -W $'perplexity\nuniform' -- "$current")) ;;
    --schedule) COMPREPLY=($(compgen -W $'classic\nannealed' -- "$current")) ;;
    --numerics) COMPREPLY=($(compgen -W $'platform\nportable' -- "$current")) ;;
    --gains) COMPREPLY=($(compgen -W $'adaptive\nconstant' -- "$current")) ;;
    --start)
      compopt -o filenames
      COMPREPLY=($(compgen -W $'random\npca\nsample' -- "$current") $(compgen -f -- "$current"))
      ;;
    --coordinates) COMPREPLY=($(compgen -W $'tsv\nnpy\ntsv,npy' -- "$current")) ;;
    -o | --out-dir) COMPREPLY=($(compgen -d -- "$current")) ;;
    *)
      if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "$(ovik-tsne --help | grep -oE '^  (-[a-z],)?--[a-z0-9-]+' |
          tr -d ' ' | tr ',' '\n')" -- "$current"))
      elif [[ $previous != -* ]] || ! ovik-tsne --help | grep -E '^  (-[a-z],)?--' |
        grep -E -- "[ ,]$previous (NUMBER|COUNT|TEXT|NAME)" >/dev/null; then
        compopt -o filenames
        COMPREPLY=($(compgen -f -- "$current"))
      fi
      ;;
  esac
}

complete -F _ovik_tsne ovik-tsne
