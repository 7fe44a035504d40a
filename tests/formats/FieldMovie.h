// A bare H.264 stream whose pictures are coded as two fields, which no encoder at hand makes: pixels as they
// are, each field of one shade.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

class FieldMovie {
public:
    /// Pictures of 32 x 32 pixels; every fourth one can be decoded without others.
    static std::vector<uint8_t> Make(unsigned pictures)
    {
        FieldMovie movie;
        for (unsigned i = 0; i < pictures; ++i) {
            if (i % 4 == 0) movie.Put_Headers();
            for (unsigned field : {0u, 1u})
                movie.Put_Field(i, field);
        }
        return movie.bytes_;
    }

private:
    void Bits(int count, unsigned value)
    {
        while (count-- > 0)
            bits_.push_back(value >> count & 1);
    }
    /// The numbers in the code of the standard: as many zeros as the number plus 1 has bits behind its first.
    void Codes(std::initializer_list<unsigned> values)
    {
        for (unsigned value : values) {
            int length = 0;
            while ((value + 1) >> (length + 1))
                ++length;
            Bits(length, 0);
            Bits(length + 1, value + 1);
        }
    }
    void Align()
    {
        while (bits_.size() % 8)
            bits_.push_back(false);
    }
    void End_Unit(unsigned header)
    {
        Bits(1, 1);
        Align();
        bytes_.insert(bytes_.end(), {0, 0, 0, 1, static_cast<uint8_t>(header)});
        unsigned zeros = 0;
        for (std::size_t i = 0; i < bits_.size(); i += 8) {
            unsigned byte = 0;
            for (std::size_t k = 0; k < 8; ++k)
                byte = byte << 1 | bits_[i + k];
            if (zeros >= 2 && byte <= 3) {
                bytes_.push_back(3);  // keeps a start code out of the unit
                zeros = 0;
            }
            bytes_.push_back(static_cast<uint8_t>(byte));
            zeros = byte ? 0 : zeros + 1;
        }
        bits_.clear();
    }
    void Put_Headers()
    {
        Bits(24, 0x4D000A);  // main profile, level 1
        Codes({0, 0, 2, 1});
        Bits(1, 0);
        Codes({1, 0});  // two macroblocks across, one down in each field
        Bits(5, 0b00100);
        End_Unit(0x67);
        Codes({0, 0});
        Bits(2, 0);
        Codes({0, 0, 0});
        Bits(3, 0);
        Codes({0, 0, 0});
        Bits(3, 0b100);
        End_Unit(0x68);
    }
    void Put_Field(unsigned picture, unsigned field)
    {
        bool const isFirst = picture % 4 == 0 && field == 0;
        Codes({0, 7, 0});
        Bits(4, picture % 4);
        Bits(2, 2 | field);
        if (isFirst) Codes({picture / 4 % 2});
        Bits(isFirst ? 2 : 1, 0);
        Codes({0, 1});
        for (int block = 0; block < 2; ++block) {
            Codes({25});  // pixels follow
            Align();
            for (int i = 0; i < 384; ++i)
                Bits(8, i < 256 ? 20 + picture * 15 + field * 5 : 128);
        }
        End_Unit(isFirst ? 0x65 : 0x61);
    }

    std::vector<bool> bits_;
    std::vector<uint8_t> bytes_;
};
