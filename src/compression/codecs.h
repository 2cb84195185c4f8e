#pragma once

#include <QByteArray>

#include <optional>

namespace vornic {

// Byte-buffer codecs: pure functions without state, callable from any thread.
//
// Three styles of failure: zlib, gzip, Snappy and LZ4 give no buffer; FastLZ and LZO give their input back.
// A buffer that is given back is the very one that was passed in: shared, not copied. FastLZ and LZO leave
// no mark in such a buffer, so whether stored bytes are compressed has to be remembered elsewhere.
//
// A stored length that is more than the stored bytes could ever expand to counts as a failure before any
// memory is taken for it.

/// A zlib stream. \a level is a switch: 0 is fastest, anything else is best. An empty input is given back.
[[nodiscard]] std::optional<QByteArray> zlibDeflateWithLevel(const QByteArray &input, int level);
[[nodiscard]] std::optional<QByteArray> zlibDeflate(const QByteArray &input);
/// Bytes behind the stream's end are ignored; a stream without its end gives nothing.
[[nodiscard]] std::optional<QByteArray> zlibInflate(const QByteArray &input);

/// A gzip member; \a level and the empty input as for zlib.
[[nodiscard]] std::optional<QByteArray> gzipDeflateWithLevel(const QByteArray &input, int level);
[[nodiscard]] std::optional<QByteArray> gzipDeflate(const QByteArray &input);
/// Takes the first gzip member, or a zlib stream.
[[nodiscard]] std::optional<QByteArray> gzipInflate(const QByteArray &input);

/// A raw Snappy block. Nothing for more than 4 GiB - 1, as the length in the block has 32 bits.
[[nodiscard]] std::optional<QByteArray> snappyCompress(const QByteArray &input);
[[nodiscard]] std::optional<QByteArray> snappyUnCompress(const QByteArray &input);

/// 4 bytes of length, then an LZ4 block. \a level 0 is the default compressor, 1 the high-compression one;
/// another is an assertion failure. Nothing for more than LZ4 takes in one block (about 1.97 GiB).
[[nodiscard]] std::optional<QByteArray> lz4CompressWithLevel(const QByteArray &input, int level);
[[nodiscard]] std::optional<QByteArray> lz4Compress(const QByteArray &input);
/// Bytes behind the block are ignored. The compressed form of an empty buffer gives nothing.
[[nodiscard]] std::optional<QByteArray> lz4UnCompress(const QByteArray &input);

/// 8 bytes of length, then a FastLZ block; or the input where it is under 17 bytes, where nothing is
/// gained, and where it is more than FastLZ counts (about 1.9 GiB).
[[nodiscard]] QByteArray fastLZCompress(const QByteArray &input);
/// A buffer of the stored length even where the block is damaged: what could be decoded, then zeros.
[[nodiscard]] QByteArray fastLZUnCompress(const QByteArray &input);

/// 8 bytes of length, then an LZO1X block, and \a compressed set; or the input, and \a compressed cleared.
[[nodiscard]] QByteArray LZOCompress(const QByteArray &input, bool *compressed);
/// The input where it is not what LZOCompress() framed.
[[nodiscard]] QByteArray LZOUncompress(const QByteArray &input);

} // namespace vornic
