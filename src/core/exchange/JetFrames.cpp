#include "exchange/JetFrames.h"

#include "platform/RuntimeError.h"

#include <cstring>
#include <optional>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

constexpr std::string_view Signature = "KAL_AUTO_Node Jet 1\n";

enum Kind : char {
    TableFrame = 'T',
    RowFrame = 'R',
    EndOfTableFrame = 'E',
    RemarkFrame = 'N',
    EndFrame = 'Z',
    FailureFrame = 'F'
};

constexpr std::size_t HeadBytes = 5;
constexpr std::size_t WriteBytes = 64U << 10U;
// No table of a Jet file has more columns.
constexpr std::uint32_t MostColumns = 255;

[[noreturn]] void FailStream(const std::string& why) {
    throw RuntimeError(ErrorNumber::StoreNotRecognized, why);
}

[[noreturn]] void FailForm() { FailStream("the reader's answer breaks its own form"); }

std::uint32_t NumberIn(const char* bytes) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) {
        number = number << 8U | static_cast<unsigned char>(bytes[i]);
    }
    return number;
}

void PutNumber(char* bytes, std::uint32_t number) {
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<char>(number >> (8 * i) & 0xFFU);
    }
}

// A frame's content, from its beginning.
class Content {
  public:
    explicit Content(std::string_view bytes) : rest_(bytes) {}

    std::string_view Take(std::size_t count) {
        if (count > rest_.size()) {
            FailForm();
        }
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }

    std::uint32_t Number() { return NumberIn(Take(4).data()); }

    std::string_view Text() { return Take(Number()); }

    void RequireEnd() const {
        if (!rest_.empty()) {
            FailForm();
        }
    }

  private:
    std::string_view rest_;
};

class FrameReader {
  public:
    FrameReader(const std::function<std::size_t(std::span<char>)>& read, JetSink& sink)
        : read_(read), sink_(sink) {}

    void Read() {
        if (Need(Signature.size()) != Signature) {
            FailForm();
        }
        Drop(Signature.size());
        bool ended = false;
        while (!ended) {
            const std::string_view head = Need(HeadBytes);
            const char kind = head[0];
            const std::uint32_t size = NumberIn(head.data() + 1);
            if (size > MostJetFrameBytes) {
                FailForm();
            }
            ended = Take(kind, Content(Need(HeadBytes + size).substr(HeadBytes)));
            Drop(HeadBytes + size);
        }
        if (begin_ != end_ || More() != 0) {
            FailForm();
        }
    }

  private:
    // That many bytes from where the stream was read to.
    std::string_view Need(std::size_t count) {
        while (end_ - begin_ < count) {
            if (More(count) == 0) {
                FailStream("the reader ended before the file was read");
            }
        }
        return {buffer_.data() + begin_, count};
    }

    std::size_t More(std::size_t count = 1) {
        if (begin_ > 0) {
            std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
            end_ -= std::exchange(begin_, 0);
        }
        if (buffer_.size() < count || buffer_.size() == end_) {
            // In steps, so that a length that lies costs no more than what really comes.
            buffer_.resize(std::max(2 * buffer_.size(), 2 * WriteBytes));
        }
        const std::size_t got = read_(std::span(buffer_).subspan(end_));
        end_ += got;
        return got;
    }

    void Drop(std::size_t count) { begin_ += count; }

    // Whether that was the last frame.
    bool Take(char kind, Content content) {
        if ((kind == RowFrame || kind == EndOfTableFrame) != inTable_ && kind != FailureFrame) {
            FailForm();
        }
        switch (kind) {
        case TableFrame:
            TakeTable(content);
            break;
        case RowFrame:
            TakeRow(content);
            break;
        case EndOfTableFrame: {
            const std::uint32_t unreadable = content.Number();
            content.RequireEnd();
            inTable_ = false;
            sink_.TakeEndOfTable(unreadable);
            break;
        }
        case RemarkFrame: {
            const std::string_view remark = content.Text();
            content.RequireEnd();
            sink_.TakeRemark(remark);
            break;
        }
        case EndFrame:
            content.RequireEnd();
            return true;
        case FailureFrame:
            FailStream(std::string(content.Text()));
        default:
            FailForm();
        }
        return false;
    }

    void TakeTable(Content& content) {
        JetTable table;
        table.name = content.Text();
        table.rows = content.Number();
        const std::uint32_t columns = content.Number();
        if (columns > MostColumns) {
            FailForm();
        }
        for (std::uint32_t i = 0; i < columns; ++i) {
            table.columns.emplace_back(content.Text());
        }
        content.RequireEnd();
        row_.resize(columns);
        inTable_ = true;
        sink_.TakeTable(table);
    }

    void TakeRow(Content& content) {
        for (JetValue& value : row_) {
            const char state = content.Take(1)[0];
            if (state != JetValue::Null && state != JetValue::Text && state != JetValue::Unreadable) {
                FailForm();
            }
            value.state = static_cast<JetValue::State>(state);
            value.text = state == JetValue::Null ? std::string_view() : content.Text();
        }
        content.RequireEnd();
        sink_.TakeRow(row_);
    }

    const std::function<std::size_t(std::span<char>)>& read_;
    JetSink& sink_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool inTable_ = false;
    std::vector<JetValue> row_;
};

} // namespace

void ReadJetFrames(const std::function<std::size_t(std::span<char>)>& read, JetSink& sink) {
    FrameReader(read, sink).Read();
}

JetFrameWriter::JetFrameWriter(std::function<void(std::string_view)> write)
    : write_(std::move(write)), buffer_(Signature) {}

void JetFrameWriter::Begin(char kind) {
    frame_ = buffer_.size();
    buffer_ += kind;
    buffer_.append(HeadBytes - 1, '\0');
}

void JetFrameWriter::Add(std::uint32_t number) {
    buffer_.append(4, '\0');
    PutNumber(buffer_.data() + buffer_.size() - 4, number);
}

void JetFrameWriter::Add(std::string_view text) {
    Add(static_cast<std::uint32_t>(text.size()));
    buffer_ += text;
}

void JetFrameWriter::Finish() {
    PutNumber(buffer_.data() + frame_ + 1, static_cast<std::uint32_t>(buffer_.size() - frame_ - HeadBytes));
    if (buffer_.size() >= WriteBytes) {
        Flush();
    }
}

void JetFrameWriter::Flush() {
    write_(buffer_);
    buffer_.clear();
}

void JetFrameWriter::TakeTable(const JetTable& table) {
    Begin(TableFrame);
    Add(table.name);
    Add(table.rows);
    Add(static_cast<std::uint32_t>(table.columns.size()));
    for (const std::string& column : table.columns) {
        Add(column);
    }
    Finish();
}

void JetFrameWriter::TakeRow(std::span<const JetValue> row) {
    Begin(RowFrame);
    for (const JetValue& value : row) {
        buffer_ += static_cast<char>(value.state);
        if (value.state != JetValue::Null) {
            Add(value.text);
        }
    }
    Finish();
}

void JetFrameWriter::TakeEndOfTable(std::uint32_t unreadableRows) {
    Begin(EndOfTableFrame);
    Add(unreadableRows);
    Finish();
}

void JetFrameWriter::TakeRemark(std::string_view remark) {
    Begin(RemarkFrame);
    Add(remark);
    Finish();
}

void JetFrameWriter::End() {
    Begin(EndFrame);
    Finish();
    Flush();
}

void JetFrameWriter::Fail(std::string_view why) {
    Begin(FailureFrame);
    Add(why);
    Finish();
    Flush();
}

} // namespace KAL_AUTO_Node
