/// Questions of the stream thread about one buffer.
#pragma once

#include <type_traits>
#include <utility>

#include "acquisition/producer_gate.h"
#include "transport/tl_wrapper.h"

namespace ImageLib {

/// The one text for all questions that a producer answers by throwing; known to the field as it is.
constexpr auto thrown_text =
    L"Exception with K_DataStream_GetBufferInfo in CStreamThread::StreamProcess ==> BUFFER_INFO_TIMESTAMP.\n";

/// A buffer that a stream has delivered, and the way to ask about it.
class BufferQuestion {
public:
    BufferQuestion(const GenICam::Factory::CTLWrapper& producer, ProducerGate& gate, GenTL::DS_HANDLE stream,
                   GenTL::BUFFER_HANDLE buffer)
        : producer_(producer), gate_(gate), stream_(stream), buffer_(buffer) {}

    /// True when the producer answered with a value that the field can hold; a smaller answer than asked for is widened with
    /// zeros.
    template <class Field>
    bool Ask(GenTL::BUFFER_INFO_CMD command, Field& field, std::size_t size = 8) {
        std::uint64_t answer = 0;
        GenTL::INFO_DATATYPE type = 0;
        status_ = gate_.Through([&] { return producer_.DSGetBufferInfo(stream_, buffer_, command, &type, &answer, &size); });
        threw_ = threw_ || status_ == K_ST_GC_ERROR;
        if (status_ != GenTL::GC_ERR_SUCCESS) return false;
        if constexpr (std::is_pointer_v<Field>) {
            field = reinterpret_cast<Field>(static_cast<std::uintptr_t>(answer));
        } else {
            if (static_cast<Field>(answer) != answer) return false;
            field = static_cast<Field>(answer);
        }
        return true;
    }
    /// Of the last question.
    K_STATUS_CODES Status() const { return status_; }
    /// Whether one of the questions since the last time was answered by a GenICam exception.
    bool TakeException() { return std::exchange(threw_, false); }

    /// GenTL's query: a null list asks for the count.
    K_STATUS_CODES Chunks(GenTL::SINGLE_CHUNK_DATA* list, std::size_t& count) {
        auto status = gate_.Through([&] { return producer_.DSGetBufferChunkData(stream_, buffer_, list, &count); });
        threw_ = threw_ || status == K_ST_GC_ERROR;
        return status;
    }
    GenTL::BUFFER_HANDLE Buffer() const { return buffer_; }

    /// Work inside the camera's node map, which somebody may be holding for ever.
    template <class Work>
    K_STATUS_CODES InMap(Work&& work) {
        return gate_.Through(work);
    }

private:
    const GenICam::Factory::CTLWrapper& producer_;
    ProducerGate& gate_;
    GenTL::DS_HANDLE stream_;
    GenTL::BUFFER_HANDLE buffer_;
    K_STATUS_CODES status_ = K_ST_SUCCESS;
    bool threw_ = false;
};

}  // namespace ImageLib
