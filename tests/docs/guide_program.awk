# Makes one program of the guide's snippets, the blocks marked ```cpp, in their order: their includes first, everything
# else as the body of main. Line directives lead the compiler's errors, and failed assertions, to the guide's lines.
# Variable: program, the file to write.
/^```cpp$/ { inside = 1; body = body "#line " FNR + 1 " \"" FILENAME "\"\n"; next }
/^```/ { inside = 0; next }
!inside { next }
/^#include / { includes = includes "#line " FNR " \"" FILENAME "\"\n" $0 "\n"; $0 = "" }
{ body = body $0 "\n" }
END {
  if (inside || body == "") {
    print FILENAME ": " (inside ? "the last snippet does not end" : "there is no snippet") > "/dev/stderr"
    exit 1
  }
  printf "%sint main() {\n%s}\n", includes, body > program
}
