// A shared library that is loaded when it is needed: those that read meshes take longer to load than a
// program of ours runs.
#pragma once

#include <string>

class LoadedLibrary {
  public:
    // Stays loaded until the process ends: libraries of this size do not unload cleanly.
    explicit LoadedLibrary(const char *name);
    // Empty when it is there, else what the system says.
    const std::string &error() const { return error_; }
    // A function by its C name, null when there is none.
    template <class Function> void find(const char *name, Function *&function) const {
        function = reinterpret_cast<Function *>(address(name));
    }

  private:
    void *address(const char *name) const;
    void *handle_;
    std::string error_;
};
