/* A host that has never heard of the library's headers: it opens the library at run time, finds its entries by name,
 * calls them, and closes it. The library stays behind, as its metamodel does, and can be opened again. */
#include <dlfcn.h>
#include <stdio.h>

static int fail(char const* what, char const* about) {
  fprintf(stderr, "%s: %s\n", what, about != NULL ? about : "no reason given");
  return 1;
}

/* open LIBRARY [ENTRY...] */
int main(int count, char** arguments) {
  if (count < 2) return fail("usage", "open LIBRARY [ENTRY...]");
  for (int round = 0; round < 2; ++round) {
    void* const library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) return fail("can't be opened", dlerror());
    for (int i = 2; i < count; ++i) {
      void (*entry)(void) = NULL;
      *(void**)&entry = dlsym(library, arguments[i]);
      if (entry == NULL) return fail("has no entry", arguments[i]);
      entry();
    }
    if (dlclose(library) != 0) return fail("can't be closed", dlerror());
    if (dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD) == NULL) return fail("went with dlclose", arguments[1]);
  }
  return 0;
}
