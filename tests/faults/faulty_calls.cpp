// Preloaded into a program: the nth call of a libc function from main() on, or every one, transfers less than it is
// asked for; or the nth allocation fails, or all from the nth on. What strace can do is not here: one call that fails.
//
// ORV_FAULT=read:3:1        the third read() is of one byte at most; 0 is every one. Also pread, write, pwrite.
// ORV_FAULT=allocation:7    the seventh allocation fails; allocation:7+ that and all behind it
// ORV_FAULT=named           no file system has files without a name
// ORV_FAULT_COUNTS=FILE     at the end of main(): a line for each function, with how often it was called
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

// The names are those of the C library.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

constexpr const char* names[] = {"read", "pread", "write", "pwrite", "allocation"};
enum kind : unsigned { reading, reading_at, writing, writing_at, allocating, kinds };

using main_function = int (*)(int, char**, char**);

bool in_main = false;
main_function real_main = nullptr;
unsigned long calls[kinds];
unsigned wanted = kinds; // none
unsigned long nth = 0;
std::size_t most = 0; // bytes of a transfer
bool and_all_behind = false;
bool names_only = false;

template <class Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

/// Counts, and tells whether this is a call that is to be wrong.
bool is_wrong(kind which)
{
    if (!in_main)
        return false;
    const unsigned long number = ++calls[which];
    return which == wanted && (nth == 0 || number == nth || (and_all_behind && number > nth));
}

std::size_t shortened(kind which, std::size_t size)
{
    return is_wrong(which) && size > most ? most : size;
}

void take_wish(const char* wish)
{
    names_only = std::strcmp(wish, "named") == 0;
    for (unsigned which = 0; which < kinds; ++which) {
        const std::size_t length = std::strlen(names[which]);
        if (std::strncmp(wish, names[which], length) != 0 || wish[length] != ':')
            continue;
        wanted = which;
        char* end = nullptr;
        nth = std::strtoul(wish + length + 1, &end, 10);
        and_all_behind = *end == '+';
        most = *end == ':' ? std::strtoul(end + 1, nullptr, 10) : 0;
        return;
    }
}

void write_counts(const char* path)
{
    std::FILE* const file = std::fopen(path, "w");
    if (file == nullptr)
        return;
    for (unsigned which = 0; which < kinds; ++which)
        std::fprintf(file, "%s %lu\n", names[which], calls[which]);
    std::fclose(file);
}

int counting_main(int argc, char** argv, char** environment)
{
    if (const char* const wish = std::getenv("ORV_FAULT"))
        take_wish(wish);
    in_main = true;
    const int status = real_main(argc, argv, environment);
    in_main = false;
    if (const char* const path = std::getenv("ORV_FAULT_COUNTS"); path != nullptr && *path != 0)
        write_counts(path);
    return status;
}

void* no_memory()
{
    errno = ENOMEM;
    return nullptr;
}

} // namespace

extern "C" {

int __libc_start_main(main_function main, int argc, char** argv, void (*init)(), void (*fini)(), void (*loader_fini)(),
                      void* stack_end)
{
    real_main = main;
    static const auto real = next<decltype(&__libc_start_main)>("__libc_start_main");
    return real(counting_main, argc, argv, init, fini, loader_fini, stack_end);
}

ssize_t read(int file, void* to, std::size_t size)
{
    static const auto real = next<decltype(&read)>("read");
    return real(file, to, shortened(reading, size));
}

ssize_t pread(int file, void* to, std::size_t size, off_t at)
{
    static const auto real = next<decltype(&pread)>("pread");
    return real(file, to, shortened(reading_at, size), at);
}

ssize_t write(int file, const void* from, std::size_t size)
{
    static const auto real = next<decltype(&write)>("write");
    return real(file, from, shortened(writing, size));
}

ssize_t pwrite(int file, const void* from, std::size_t size, off_t at)
{
    static const auto real = next<decltype(&pwrite)>("pwrite");
    return real(file, from, shortened(writing_at, size), at);
}

int open(const char* path, int flags, ...)
{
    static const auto real = next<decltype(&open)>("open");
    va_list more;
    va_start(more, flags);
    const auto mode = static_cast<mode_t>((flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, unsigned) : 0);
    va_end(more);
    if (in_main && names_only && (flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return real(path, flags, mode);
}

// What the libraries of a module do when they are loaded is nobody's here.
void* dlopen(const char* path, int mode)
{
    static const auto real = next<decltype(&dlopen)>("dlopen");
    const bool counted = in_main;
    in_main = false;
    void* const module = real(path, mode);
    in_main = counted;
    return module;
}

void* malloc(std::size_t size)
{
    return is_wrong(allocating) ? no_memory() : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    return is_wrong(allocating) ? no_memory() : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    return is_wrong(allocating) ? no_memory() : __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return is_wrong(allocating) ? no_memory() : __libc_memalign(alignment, size);
}

int posix_memalign(void** to, std::size_t alignment, std::size_t size)
{
    void* const block = is_wrong(allocating) ? no_memory() : __libc_memalign(alignment, size);
    if (block == nullptr)
        return ENOMEM;
    *to = block;
    return 0;
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
