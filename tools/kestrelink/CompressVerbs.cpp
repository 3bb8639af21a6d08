// kestrelink compress and decompress: a file through the lossless coder of
// CIppImageCompress. The stream file is the library's stream as it stands:
// a 32-bit total, then the payload. It records neither the method nor the
// raw length, so decompress is told both.
#include <kestrelink/CIppImageCompress.h>

#include <filesystem>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "Args.h"
#include "CompressVerbs.h"
#include "FrameFile.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

// Keeps twice the input, the room a payload may take, within 31 bits.
constexpr uint64_t kMaxInputBytes = uint64_t(1) << 30;

struct Method {
  std::string_view name;
  IppCompressType type;
};
constexpr Method kMethods[] = {{"huffman", IppCompressHuffman}, {"lzss", IppCompressLZ77}, {"rle", IppCompressRLE}};

IppCompressType ParseMethod(std::string_view text) {
  for (const Method& m : kMethods)
    if (m.name == text) return m.type;
  throw UsageError("unknown method '" + std::string(text) + "' for --method (methods: huffman, lzss, rle)");
}

std::string_view MethodName(IppCompressType type) {
  for (const Method& m : kMethods)
    if (m.type == type) return m.name;
  return "?";
}

struct Request {
  std::optional<IppCompressType> method;
  std::optional<uint64_t> bytes;
  std::string in, out;
};

bool ParseRequest(std::string_view verb, std::span<const std::string_view> args, bool wantsBytes, Request& r) {
  std::vector<OptionSpec> options = {{"--method", "M", [&](std::string_view v) { r.method = ParseMethod(v); }}};
  if (wantsBytes)
    options.push_back({"--bytes", "N", [&](std::string_view v) {
                         r.bytes = uint64_t(ParseInteger("--bytes", v, 1, int64_t(kMaxInputBytes)));
                       }});
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) return false;
  if (!r.method) throw UsageError("missing --method M (methods: huffman, lzss, rle)");
  if (wantsBytes && !r.bytes) throw UsageError("missing --bytes N: the raw length, which the stream does not record");
  if (files.size() != 2)
    throw UsageError(std::string(files.size() < 2 ? "missing file names: " : "too many file names: ") +
                     std::string(verb) + " takes IN and OUT");
  r.in = std::string(files[0]);
  r.out = std::string(files[1]);
  return true;
}

std::vector<uint8_t> ReadWholeFile(const std::string& path) {
  std::error_code error;
  const uint64_t size = std::filesystem::file_size(path, error);
  if (error) throw RunError("cannot open '" + path + "': " + error.message());
  if (size == 0) throw RunError("'" + path + "' is empty");
  if (size > kMaxInputBytes) throw RunError("'" + path + "' holds more than 1 GiB");
  return ReadFrameFile(path, size, "the whole file");
}

uint32_t StreamTotal(const std::vector<uint8_t>& stream) {
  return uint32_t(stream[0]) | uint32_t(stream[1]) << 8 | uint32_t(stream[2]) << 16 | uint32_t(stream[3]) << 24;
}

}  // namespace

void PrintCompressUsage(std::ostream& out) {
  out << "usage: kestrelink compress --method M IN OUT\n"
         "\n"
         "Compresses the whole of IN without loss into the library's stream format: a\n"
         "32-bit little-endian total length (itself included), then the payload of the\n"
         "method. Prints the sizes and the ratio. The stream is checked by decoding it.\n"
         "\n"
         "options:\n"
         "  --method M    huffman (order-0 Huffman over bytes), lzss (LZ77 with a 32 KiB\n"
         "                window) or rle (byte runs)\n"
         "  -h, --help    show this help\n"
         "\n"
         "example:\n"
         "  kestrelink compress --method huffman frame.raw frame.huf\n"
         "  kestrelink decompress --method huffman --bytes 4147200 frame.huf frame.raw\n";
}

void PrintDecompressUsage(std::ostream& out) {
  out << "usage: kestrelink decompress --method M --bytes N IN OUT\n"
         "\n"
         "Decodes a stream written by 'kestrelink compress' (or by the library) into OUT.\n"
         "The stream records neither its method nor the raw length: give both.\n"
         "\n"
         "options:\n"
         "  --method M    huffman, lzss or rle, as it was compressed\n"
         "  --bytes N     the raw length in bytes\n"
         "  -h, --help    show this help\n"
         "\n"
         "example:\n"
         "  kestrelink decompress --method lzss --bytes 2073600 frame.lz frame.raw\n";
}

int RunCompress(std::span<const std::string_view> args) {
  Request r;
  if (!ParseRequest("compress", args, false, r)) {
    PrintCompressUsage(std::cout);
    return 0;
  }
  std::vector<uint8_t> raw = ReadWholeFile(r.in);
  const uint32_t n = uint32_t(raw.size());
  CIppImageCompress codec;
  std::vector<uint8_t> stream(size_t(codec.InitCompress(*r.method, n)) + 4);
  stream.resize(size_t(codec.EncodeImage(raw.data(), stream.data())) + 4);

  // The coder reports its failures only on standard error: a decode tells.
  std::vector<uint8_t> back(n);
  codec.InitCompress(*r.method, n);
  codec.DecodeImage(stream.data(), back.data());
  if (codec.m_size != n || back != raw)
    throw RunError("the " + std::string(MethodName(*r.method)) + " coder could not code '" + r.in +
                   "' (see the message above)");
  WriteRawFile(r.out, stream);
  std::cout << r.in << ": " << n << " bytes -> " << stream.size() << " bytes (" << MethodName(*r.method)
            << ", ratio " << std::fixed << std::setprecision(3) << double(n) / double(stream.size()) << ")\n";
  return 0;
}

int RunDecompress(std::span<const std::string_view> args) {
  Request r;
  if (!ParseRequest("decompress", args, true, r)) {
    PrintDecompressUsage(std::cout);
    return 0;
  }
  std::vector<uint8_t> stream = ReadWholeFile(r.in);
  // The library trusts the total as the stream's length: check it first.
  if (stream.size() < 4 || StreamTotal(stream) < 4 || StreamTotal(stream) > stream.size())
    throw RunError("'" + r.in + "' is no stream: its first four bytes do not give its length");
  const uint32_t n = uint32_t(*r.bytes);
  std::vector<uint8_t> raw(n);
  CIppImageCompress codec;
  codec.InitCompress(*r.method, n);
  codec.DecodeImage(stream.data(), raw.data());
  if (codec.m_size != n)
    throw RunError("'" + r.in + "' decodes to " + std::to_string(codec.m_size) + " bytes, not the " +
                   std::to_string(n) + " of --bytes");
  WriteRawFile(r.out, raw);
  return 0;
}

}  // namespace kestrelink::tool
