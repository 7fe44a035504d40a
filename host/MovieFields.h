// What only the bytes of packets tell: which pictures come as two fields, each in a packet of its own, and
// the order in which pictures are shown.
#pragma once

#include "MovieLibrary.h"

/// Tells which packets of a stream hold the second field of a picture whose first field came before them.
class FieldPairs {
public:
    explicit FieldPairs(AVStream const& stream);

    /// Takes the packets of the stream in their order. True for a second field.
    bool Is_Second(AVPacket const& packet);

    /// Whether the last packet held a first field alone, or a picture of two that began with it.
    bool Has_Field() const { return open_ != AV_PICTURE_STRUCTURE_UNKNOWN; }

    /// Whether pictures have numbers.
    bool Has_Numbers() const { return parser_ != nullptr; }

    /// The place of the last packet's picture among those from the last new beginning on; numbers may be left
    /// out.
    int Number() const { return parser_->output_picture_number; }

private:
    struct Closer {
        void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
    };
    std::unique_ptr<AVCodecParserContext, Closer> parser_;  ///< null for codecs that keep fields together
    MovieOwner<AVCodecContext> codec_;
    AVPictureStructure open_ = AV_PICTURE_STRUCTURE_UNKNOWN;  ///< field that waits for the other one
};
