// The hot loops of the Green function and of the panel integrals run on the vector unit. Truth: the symbols
// that the library asks the linker for; a compiler that falls back to scalar code, or joins sine and cosine,
// shows there.
#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

TEST(VectorSymbols, LibrariesCallTheVectorFunctions) {
#if !defined(__x86_64__) || !defined(__GNUC__) || defined(__clang__) || defined(VORDA_NO_SIMD_CLONES) ||     \
    !defined(__OPTIMIZE__)
    GTEST_SKIP() << "vector clones are made by GCC on x86-64, without sanitizers, when it optimizes";
#else
    std::FILE *pipe =
        popen("cd '" VORDA_BINARY_DIR "' && nm -uA libvorda_green.a libvorda_rankine.a 2>/dev/null", "r");
    ASSERT_NE(pipe, nullptr);
    std::string symbols;
    std::array<char, 512> line;
    while (std::fgets(line.data(), static_cast<int>(line.size()), pipe))
        symbols += line.data();
    ASSERT_EQ(pclose(pipe), 0);
    const auto asks = [&](const std::string &file, const std::string &symbol) {
        for (std::size_t at = symbols.find(file); at != std::string::npos; at = symbols.find(file, at + 1)) {
            const std::string entry = symbols.substr(at, symbols.find('\n', at) - at);
            if (entry.size() > symbol.size() + 1 &&
                entry.compare(entry.size() - symbol.size() - 1, std::string::npos, " " + symbol) == 0)
                return true;
        }
        return false;
    };
    for (const std::string width : {"_ZGVbN4v_", "_ZGVdN8v_", "_ZGVeN16v_"}) {
        for (const std::string function : {"expf", "logf", "sinf", "cosf"})
            EXPECT_TRUE(asks("deep_kernels", width + function)) << width + function;
        EXPECT_TRUE(asks("rankine_terms", width + "logf")) << width;
        for (const std::string function : {"expf", "logf"})
            EXPECT_TRUE(asks("mode_kernels", width + function)) << width + function;
    }
    for (const std::string symbol : {"_ZGVbN2v_log", "_ZGVdN4v_log", "_ZGVeN8v_log", "_ZGVbN2vv_atan2",
                                     "_ZGVdN4vv_atan2", "_ZGVeN8vv_atan2"})
        EXPECT_TRUE(asks("panint_eight", symbol)) << symbol;
    for (const std::string scalar : {"log", "atan2"})
        EXPECT_FALSE(asks("panint_eight", scalar)) << scalar;
    for (const std::string scalar : {"expf", "logf", "sinf", "cosf", "sincosf"}) {
        EXPECT_FALSE(asks("deep_kernels", scalar)) << scalar;
        EXPECT_FALSE(asks("rankine_terms", scalar)) << scalar;
        EXPECT_FALSE(asks("mode_kernels", scalar)) << scalar;
    }
#endif
}
