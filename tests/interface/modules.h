/**
 * @file
 * Shared objects that a test loads, and who owns a function.
 */
#ifndef PENDRA_TESTS_INTERFACE_MODULES_H
#define PENDRA_TESTS_INTERFACE_MODULES_H

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace pendra::test {

/** A loaded shared object; it stays loaded while this lives. */
class Module {
  public:
    Module(const char* path, int flags) : handle_(dlopen(path, RTLD_NOW | flags)) {
        if (handle_ == nullptr) ADD_FAILURE() << dlerror();
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module() { dlclose(handle_); }

    /** @return what the object calls by a name, nullptr when it does not know it. */
    template <typename Function>
    Function find(const char* name) const {
        return reinterpret_cast<Function>(dlsym(handle_, name));
    }

    /** @return what one of its functions without arguments returns. */
    template <typename Result>
    Result ask(const char* name) const {
        const auto function = find<Result (*)()>(name);
        if (function == nullptr) ADD_FAILURE() << name << " is not there";
        return function == nullptr ? Result{} : function();
    }

  private:
    void* handle_;
};

/** @return the file name of the shared object that defines a function. */
template <typename Function>
std::string ownerOf(Function function) {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(function), &info) == 0) return "nobody";
    return std::filesystem::path(info.dli_fname).filename();
}

} // namespace pendra::test

#endif
