#!/usr/bin/env bash
# A processor variant's file is built for its own instruction set. Any weak
# (inline or template) function it emits must not also be emitted by a file
# of another instruction set: the linker keeps one copy of such a function for
# the whole library, and an AVX-512 copy reached from the portable path would
# stop the library on a processor without AVX-512.
# Arguments: the library's object files.
set -euo pipefail
declare -A seen
status=0
for object in "$@"; do
  case "$object" in
    *_avx512.cpp.o) group=avx512 ;;
    *_avx2.cpp.o) group=avx2 ;;
    *_sse41.cpp.o) group=sse41 ;;
    *_ssse3.cpp.o) group=ssse3 ;;
    *) group=baseline ;;
  esac
  while read -r kind symbol; do
    case "$kind" in W|V) ;; *) continue ;; esac
    # The compiler's own reference to the exception personality is alike everywhere.
    case "$symbol" in DW.ref.*) continue ;; esac
    previous="${seen[$symbol]:-}"
    if [[ -z "$previous" ]]; then
      seen[$symbol]=$group
    elif [[ "$previous" != "$group" ]]; then
      echo "emitted by $previous and $group files: $(c++filt "$symbol")"
      status=1
    fi
  done < <(nm --defined-only "$object" | awk 'NF == 3 { print $2, $3 }')
done
exit $status
