// See MovieFields.h.
#include "MovieFields.h"

FieldPairs::FieldPairs(AVStream const& stream)
{
    // The parsers of the other codecs with fields bring them together.
    if (stream.codecpar->codec_id != AV_CODEC_ID_H264) return;
    parser_.reset(av_parser_init(stream.codecpar->codec_id));
    codec_.reset(avcodec_alloc_context3(nullptr));
    if (!parser_ || !codec_ || avcodec_parameters_to_context(codec_.get(), stream.codecpar) < 0)
        parser_.reset();
    else
        parser_->flags |= PARSER_FLAG_COMPLETE_FRAMES;
}

bool FieldPairs::Is_Second(AVPacket const& packet)
{
    if (!parser_) return false;
    std::uint8_t* data = nullptr;
    int size = 0;
    parser_->picture_structure = AV_PICTURE_STRUCTURE_UNKNOWN;
    av_parser_parse2(parser_.get(), codec_.get(), &data, &size, packet.data, packet.size, packet.pts,
                     packet.dts, packet.pos);
    AVPictureStructure const structure = parser_->picture_structure;
    bool const isField =
        structure == AV_PICTURE_STRUCTURE_TOP_FIELD || structure == AV_PICTURE_STRUCTURE_BOTTOM_FIELD;
    bool const isSecond = isField && Has_Field() && structure != open_;
    // Packets of whole pictures begin with the same field each time, and never pair.
    open_ = isField && !isSecond ? structure : AV_PICTURE_STRUCTURE_UNKNOWN;
    return isSecond;
}
