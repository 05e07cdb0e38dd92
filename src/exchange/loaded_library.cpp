#include "exchange/loaded_library.hpp"

#include <dlfcn.h>

LoadedLibrary::LoadedLibrary(const char *name) : handle_(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr)
        error_ = dlerror();
}

void *LoadedLibrary::address(const char *name) const {
    return handle_ == nullptr ? nullptr : dlsym(handle_, name);
}
