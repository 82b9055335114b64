// SPDX-License-Identifier: GPL-3.0-or-later
// The whole-process floor of opening a document: a program of its own that
// only reads the file, crc32s it and, when compressed, uncompresses the
// payload; no Qt, so that what `kel check` costs beyond it is what kel adds.
#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

std::int32_t le32(const unsigned char *p)
{
    return std::int32_t(std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 | std::uint32_t(p[2]) << 16
                        | std::uint32_t(p[3]) << 24);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2)
        return 64;
    std::FILE *f = std::fopen(argv[1], "rb");
    if (!f)
        return 1;
    std::fseek(f, 0, SEEK_END);
    const long size = std::ftell(f);
    std::fseek(f, 0, SEEK_SET);
    std::vector<unsigned char> file(std::size_t(size > 32 ? size : 32));
    const bool read = std::fread(file.data(), 1, std::size_t(size), f) == std::size_t(size);
    std::fclose(f);
    if (!read || size < 32)
        return 1;
    const std::int32_t payloadLength = le32(&file[20]), storedLength = le32(&file[24]), headerLength = le32(&file[28]);
    const long stored = storedLength >= 1 ? storedLength : payloadLength;
    if (payloadLength < 0 || headerLength < 0 || headerLength + stored > size)
        return 5;
    uLong crc = crc32(0L, Z_NULL, 0);
    crc = crc32(crc, file.data(), uInt(headerLength + stored));
    if (storedLength >= 1) {
        std::vector<unsigned char> payload(static_cast<std::size_t>(payloadLength));
        uLongf destLen = uLongf(payloadLength);
        if (uncompress(payload.data(), &destLen, file.data() + headerLength, uLong(storedLength)) != Z_OK)
            return 5;
        crc ^= destLen;
    }
    std::printf("%lx\n", crc);
    return 0;
}
