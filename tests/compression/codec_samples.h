#pragma once

#include <QByteArray>

#include <random>
#include <string>
#include <vector>

namespace vornic::test {

enum class Content { Zeros, Random, Text, Pattern };

/// \a size bytes of \a content, the same for the same \a seed.
inline QByteArray sampleOf(Content content, qsizetype size, unsigned seed = 1)
{
    static constexpr const char *words[]
        = { "the ", "quick ", "screen ", "recorder ", "frame ", "of ", "a ", "window\n", "42 ", "pixels, " };
    std::mt19937 random(seed);
    QByteArray bytes;
    bytes.reserve(size + 16);
    switch (content) {
    case Content::Zeros:
        bytes.fill('\0', size);
        break;
    case Content::Random:
        while (bytes.size() < size)
            bytes.append(static_cast<char>(random() & 255U));
        break;
    case Content::Text:
        while (bytes.size() < size)
            bytes.append(words[random() % std::size(words)]);
        break;
    case Content::Pattern: // lines of a picture: long repeats at one distance, now and then another byte
        while (bytes.size() < size) {
            const bool changed = bytes.size() < 300 || random() % 50 == 0;
            bytes.append(changed ? static_cast<char>(random() & 255U) : bytes.at(bytes.size() - 300));
        }
        break;
    }
    bytes.resize(size);
    return bytes;
}

struct Sample {
    std::string name;
    QByteArray bytes;
};

/// Every content at the sizes where some family or framing changes its ways.
inline std::vector<Sample> allSamples()
{
    static constexpr std::pair<Content, const char *> contents[] = { { Content::Zeros, "Zeros" },
                                                                     { Content::Random, "Random" },
                                                                     { Content::Text, "Text" },
                                                                     { Content::Pattern, "Pattern" } };
    static constexpr qsizetype sizes[]
        = { 0,  1,   2,   8,    9,    12,    13,    15,    16,    17,    18,    31,    32,
            33, 255, 256, 4095, 4096, 16383, 16384, 16385, 65535, 65536, 65537, 300000 };
    std::vector<Sample> samples;
    for (const auto &[content, name] : contents) {
        for (const qsizetype size : sizes)
            samples.push_back({ name + std::to_string(size), sampleOf(content, size) });
    }
    return samples;
}

} // namespace vornic::test
