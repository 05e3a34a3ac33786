// The one reader and the one writer of protocol records (rules in RecordIO.h).
//
// The reader is a handler of Boost.JSON's basic_parser: records are filled while the text is
// parsed, with no JSON tree in between, which keeps a large answer at the cost of its records.
// It fills a fresh record of the same type, and members go over to the caller's record only
// once the whole text has proved to be one valid document.
#include "protocol/RecordIO.h"

#include <boost/json/basic_parser_impl.hpp>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace vanto::protocol {

namespace {

using boost::json::error_code;
using boost::json::string_view;

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
// Longer keys name no member, so they are not collected.
constexpr std::size_t MaxKeyLength = 64;

std::string_view View(string_view text) noexcept {
    return {text.data(), text.size()};
}

// Whether `key`, whose words are `words`, is the field's name.
bool SameKey(const Field& field, const KeyWords& words, std::string_view key) noexcept {
    constexpr std::size_t Told = 2 * sizeof(std::uint64_t); // what the words alone tell apart
    if (((field.words.size ^ words.size) | (field.words.head ^ words.head) |
         (field.words.tail ^ words.tail)) != 0) {
        return false;
    }
    return key.size() <= Told ||
           std::memcmp(field.key.data() + sizeof(std::uint64_t), key.data() + sizeof(std::uint64_t),
                       key.size() - Told) == 0;
}

bool FitsInt32(std::int64_t value) noexcept {
    return value >= std::numeric_limits<std::int32_t>::min() &&
           value <= std::numeric_limits<std::int32_t>::max();
}

using TextList = Core::DynamicArray<Core::TevString>;
using IntegerList = Core::DynamicArray<std::int32_t>;

// Moves one member of a finished record into the caller's record.
void TakeOver(const Field& field, void* to, void* from) noexcept {
    void* target = MemberOf(field, to);
    void* source = MemberOf(field, from);
    switch (field.kind) {
    case Kind::Text:
        *static_cast<Core::TevString*>(target) = std::move(*static_cast<Core::TevString*>(source));
        break;
    case Kind::Integer:
        *static_cast<std::int32_t*>(target) = *static_cast<std::int32_t*>(source);
        break;
    case Kind::Flag:
        *static_cast<bool*>(target) = *static_cast<bool*>(source);
        break;
    case Kind::Texts:
        *static_cast<TextList*>(target) = std::move(*static_cast<TextList*>(source));
        break;
    case Kind::Integers:
        *static_cast<IntegerList*>(target) = std::move(*static_cast<IntegerList*>(source));
        break;
    case Kind::Record:
        field.nested().moveRecord(target, source);
        break;
    case Kind::Records:
        field.nested().moveList(target, source);
        break;
    }
}

// Makes `member` the text `text`. An empty member (a fresh record's) gets the text built in its
// own place: a long text built elsewhere has its two words written one at a time, and moving it in
// reads them back as one wider load, which waits for both stores to reach the cache.
void SetText(Core::TevString& member, std::string_view text) {
    if (!member.empty()) {
        member = Core::TevString(text);
        return;
    }
    try {
        ::new (&member) Core::TevString(text); // an empty text holds nothing to free
    } catch (...) {
        ::new (&member) Core::TevString(); // the member stays a text for its record to destroy
        throw;
    }
}

// The list of the elements from `start` on, at its final size (one allocation, no growing), the
// elements taken out of `pending`.
template <class List, class Pending> List TakeList(Pending& pending, std::size_t start) {
    List list;
    list.reserve(pending.size() - start);
    list.insert(list.end(), std::make_move_iterator(pending.begin() + start),
                std::make_move_iterator(pending.end()));
    pending.resize(start);
    return list;
}

// basic_parser handler that builds records as the events come.
class RecordBuilder {
public:
    static constexpr std::size_t max_object_size = std::size_t(-1);
    static constexpr std::size_t max_array_size = std::size_t(-1);
    static constexpr std::size_t max_key_size = std::size_t(-1);
    static constexpr std::size_t max_string_size = std::size_t(-1);

    // `completed` collects the fields of the top record whose value was read completely, by
    // declared index; it outlives the builder so that a failure can keep them.
    RecordBuilder(void* record, const Schema& schema, std::uint64_t& completed) noexcept
        : top_(record), schema_(schema), completed_(completed) {}
    ~RecordBuilder() {
        while (depth_ > 0) {
            Release(frames_[--depth_]);
        }
    }
    RecordBuilder(const RecordBuilder&) = delete;
    RecordBuilder& operator=(const RecordBuilder&) = delete;

    bool on_document_begin(error_code&) { return true; }
    bool on_document_end(error_code&) { return true; }
    bool on_comment_part(string_view, error_code&) { return true; }
    bool on_comment(string_view, error_code&) { return true; }
    bool on_number_part(string_view, error_code&) { return true; }

    bool on_object_begin(error_code&) {
        if (skip_ > 0) {
            ++skip_;
            return true;
        }
        if (depth_ == 0) {
            Push(Frame::Type::Record, &schema_, top_, nullptr);
            return true;
        }
        Frame& frame = Top();
        switch (frame.type) {
        case Frame::Type::Record: {
            const Field* field = TakePending(frame);
            if (field != nullptr && field->kind == Kind::Record) {
                const Schema& nested = field->nested();
                Push(Frame::Type::Record, &nested, nested.create(), field);
            } else {
                ++skip_;
            }
            break;
        }
        case Frame::Type::Records:
            Push(Frame::Type::Record, frame.schema, frame.schema->create(), nullptr);
            break;
        default:
            AppendDefault(frame);
            ++skip_;
            break;
        }
        return true;
    }

    bool on_object_end(std::size_t members, error_code&) {
        if (skip_ > 0) {
            --skip_;
            return true;
        }
        // Read in place: copied whole, the frame would be loaded in wider pieces than its last
        // members were just stored in, and the load would wait for the stores to reach the cache.
        const Frame& done = frames_[--depth_];
        if (depth_ == 0) {
            return true; // the top record itself
        }
        Frame& parent = Top();
        if (parent.type == Frame::Type::Records) {
            Keep(*done.schema, done.object);
        } else if (members > 0) {
            done.schema->adopt(MemberOf(*done.field, parent.object), done.object);
            MarkCompleted(done.field, depth_);
        } else {
            done.schema->destroy(done.object); // {} holds no data
        }
        return true;
    }

    bool on_array_begin(error_code&) {
        if (skip_ > 0 || depth_ == 0) {
            ++skip_;
            return true;
        }
        Frame& frame = Top();
        if (frame.type != Frame::Type::Record) {
            AppendDefault(frame);
            ++skip_;
            return true;
        }
        const Field* field = TakePending(frame);
        switch (field != nullptr ? field->kind : Kind::Text) {
        case Kind::Texts:
            Push(Frame::Type::Texts, nullptr, nullptr, field);
            Top().start = texts_.size();
            break;
        case Kind::Integers:
            Push(Frame::Type::Integers, nullptr, nullptr, field);
            Top().start = integers_.size();
            break;
        case Kind::Records:
            Push(Frame::Type::Records, &field->nested(), nullptr, field);
            Top().start = records_.size();
            break;
        default:
            ++skip_;
            break;
        }
        return true;
    }

    bool on_array_end(std::size_t elements, error_code&) {
        if (skip_ > 0) {
            --skip_;
            return true;
        }
        Frame& done = Top();
        if (elements > 0) {
            void* member = MemberOf(*done.field, frames_[depth_ - 2].object);
            switch (done.type) {
            case Frame::Type::Texts:
                *static_cast<TextList*>(member) = TakeList<TextList>(texts_, done.start);
                break;
            case Frame::Type::Integers:
                *static_cast<IntegerList*>(member) = TakeList<IntegerList>(integers_, done.start);
                break;
            default:
                SetRecords(done, member);
                break;
            }
            MarkCompleted(done.field, depth_ - 1);
        }
        Release(done);
        --depth_;
        return true;
    }

    bool on_key_part(string_view part, std::size_t, error_code&) {
        if (skip_ > 0) {
            return true;
        }
        keySplit_ = true;
        if (key_.size() + part.size() <= MaxKeyLength) {
            key_.append(part.data(), part.size());
        } else {
            keyTooLong_ = true;
        }
        return true;
    }

    // Outside a value passed over, every object is a record being filled.
    bool on_key(string_view part, std::size_t, error_code&) {
        if (skip_ > 0) {
            return true;
        }
        Frame& frame = Top();
        if (!keySplit_) { // the whole key lies in the text
            frame.pending = Find(frame, View(part));
            return true;
        }
        frame.pending = nullptr;
        if (!keyTooLong_ && key_.size() + part.size() <= MaxKeyLength) {
            key_.append(part.data(), part.size());
            frame.pending = Find(frame, key_);
        }
        key_.clear();
        keyTooLong_ = false;
        keySplit_ = false;
        return true;
    }

    bool on_string_part(string_view part, std::size_t, error_code&) {
        if (skip_ == 0 && WantsText()) {
            text_.append(part.data(), part.size());
        }
        return true;
    }

    bool on_string(string_view part, std::size_t, error_code&) {
        if (skip_ > 0 || depth_ == 0) {
            return true;
        }
        Frame& frame = Top();
        if (frame.type != Frame::Type::Record || !text_.empty()) {
            return OtherString(frame, part);
        }
        // Most strings are a member's whole text: this path keeps to that, so that it needs few
        // registers and saves few.
        if (const Field* field = Scalar(frame, Kind::Text)) {
            SetText(*static_cast<Core::TevString*>(MemberOf(*field, frame.object)), View(part));
            MarkCompleted(field, depth_);
        }
        return true;
    }

    bool on_int64(std::int64_t value, string_view, error_code&) {
        if (!FitsInt32(value)) {
            return OtherValue();
        }
        if (skip_ > 0 || depth_ == 0) {
            return true;
        }
        Frame& frame = Top();
        if (frame.type == Frame::Type::Integers) {
            integers_.push_back(static_cast<std::int32_t>(value));
        } else if (const Field* field = Scalar(frame, Kind::Integer)) {
            *static_cast<std::int32_t*>(MemberOf(*field, frame.object)) =
                static_cast<std::int32_t>(value);
            MarkCompleted(field, depth_);
        } else {
            AppendDefault(frame);
        }
        return true;
    }

    bool on_uint64(std::uint64_t, string_view, error_code&) { return OtherValue(); }
    bool on_double(double, string_view, error_code&) { return OtherValue(); }
    bool on_null(error_code&) { return OtherValue(); }

    bool on_bool(bool value, error_code&) {
        if (skip_ > 0 || depth_ == 0) {
            return true;
        }
        Frame& frame = Top();
        if (const Field* field = Scalar(frame, Kind::Flag)) {
            *static_cast<bool*>(MemberOf(*field, frame.object)) = value;
            MarkCompleted(field, depth_);
        } else {
            AppendDefault(frame);
        }
        return true;
    }

private:
    struct Frame {
        enum class Type : std::uint8_t { Record, Texts, Integers, Records };
        Type type;
        // Record: the record's schema; Records: the elements' schema.
        const Schema* schema;
        // Record: the record being filled (owned, except the top one).
        void* object;
        // The parent's member this value goes to; null for a list element and the top.
        const Field* field;
        // Record: the member named by the last key; null when the key names none.
        const Field* pending;
        // Record: where the next key is looked for first (keys mostly come in declared order).
        // Lists: where the list's elements start in the builder's elements of that kind.
        std::size_t start;
    };

    Frame& Top() noexcept { return frames_[depth_ - 1]; }

    void Push(Frame::Type type, const Schema* schema, void* object, const Field* field) noexcept {
        frames_[depth_++] = Frame{type, schema, object, field, nullptr, 0};
    }

    void Release(const Frame& frame) noexcept {
        switch (frame.type) {
        case Frame::Type::Record:
            if (frame.object != top_) {
                frame.schema->destroy(frame.object);
            }
            break;
        case Frame::Type::Texts:
            texts_.resize(frame.start);
            break;
        case Frame::Type::Integers:
            integers_.resize(frame.start);
            break;
        case Frame::Type::Records:
            for (std::size_t i = frame.start; i < records_.size(); ++i) {
                frame.schema->destroy(records_[i]);
            }
            records_.resize(frame.start);
            break;
        }
    }

    // A finished element of a list of records, owned by the builder until the list is complete.
    void Keep(const Schema& schema, void* record) {
        try {
            records_.push_back(record);
        } catch (...) {
            schema.destroy(record);
            throw;
        }
    }

    void SetRecords(const Frame& done, void* member) {
        const std::size_t start = done.start;
        try {
            done.schema->setList(member, records_.data() + start, records_.size() - start);
        } catch (...) {
            records_.resize(start); // setList has destroyed them
            throw;
        }
        records_.resize(start);
    }

    // The member of the frame's record that `key` names, looked for from where the last key's
    // member left off; null when it names none.
    static const Field* Find(Frame& frame, std::string_view key) noexcept {
        const Field* fields = frame.schema->fields;
        const std::size_t count = frame.schema->count;
        const KeyWords words = WordsOf(key);
        for (std::size_t index = frame.start; index < count; ++index) {
            if (SameKey(fields[index], words, key)) {
                frame.start = index + 1;
                return &fields[index];
            }
        }
        for (std::size_t index = 0; index < frame.start; ++index) {
            if (SameKey(fields[index], words, key)) {
                frame.start = index + 1;
                return &fields[index];
            }
        }
        return nullptr;
    }

    static const Field* TakePending(Frame& frame) noexcept {
        const Field* field = frame.pending;
        frame.pending = nullptr;
        return field;
    }

    // The member a scalar of `kind` goes to, or null when it goes nowhere.
    static const Field* Scalar(Frame& frame, Kind kind) noexcept {
        if (frame.type != Frame::Type::Record) {
            return nullptr;
        }
        const Field* field = TakePending(frame);
        return field != nullptr && field->kind == kind ? field : nullptr;
    }

    // Whether a string now being read would be kept.
    bool WantsText() const noexcept {
        if (depth_ == 0) {
            return false;
        }
        const Frame& frame = frames_[depth_ - 1];
        return frame.type == Frame::Type::Texts ||
               (frame.type == Frame::Type::Record && frame.pending != nullptr &&
                frame.pending->kind == Kind::Text);
    }

    // A string in a list, or one that came in parts.
    __attribute__((noinline)) bool OtherString(Frame& frame, string_view part) {
        if (frame.type == Frame::Type::Texts) {
            texts_.push_back(TakeText(part));
        } else if (const Field* field = Scalar(frame, Kind::Text)) {
            *static_cast<Core::TevString*>(MemberOf(*field, frame.object)) = TakeText(part);
            MarkCompleted(field, depth_);
        } else {
            AppendDefault(frame);
        }
        return true;
    }

    // The string that ends with `last`: straight from the text, or joined with the parts before.
    Core::TevString TakeText(string_view last) {
        if (text_.empty()) {
            return Core::TevString(View(last));
        }
        text_.append(last.data(), last.size());
        Core::TevString value(std::move(text_));
        text_.clear();
        return value;
    }

    // A value that no member takes as data: in a list it still takes its place.
    bool OtherValue() {
        if (skip_ == 0 && depth_ > 0) {
            AppendDefault(Top());
        }
        return true;
    }

    void AppendDefault(Frame& frame) {
        switch (frame.type) {
        case Frame::Type::Record:
            frame.pending = nullptr;
            break;
        case Frame::Type::Texts:
            texts_.emplace_back();
            break;
        case Frame::Type::Integers:
            integers_.push_back(0);
            break;
        case Frame::Type::Records:
            Keep(*frame.schema, frame.schema->create());
            break;
        }
    }

    // `parentDepth` is the depth of the record that holds the field; 1 is the top record.
    void MarkCompleted(const Field* field, std::size_t parentDepth) noexcept {
        if (parentDepth == 1) {
            completed_ |= std::uint64_t{1} << (field - schema_.fields);
        }
    }

    void* top_;
    const Schema& schema_;
    Frame frames_[MaxJsonDepth + 1];
    std::size_t depth_ = 0;
    // Open containers inside a value that is being passed over.
    std::size_t skip_ = 0;
    // A key that came in parts, gathered until its end.
    std::string key_;
    bool keySplit_ = false;
    bool keyTooLong_ = false;
    std::string text_;
    // The elements of the lists being read, innermost list last: each list is made at its final
    // size once complete.
    std::vector<Core::TevString> texts_;
    std::vector<std::int32_t> integers_;
    std::vector<void*> records_;
    std::uint64_t& completed_;
};

// Standard JSON only, so that what is accepted here is what any other reader of the connector's
// answers accepts. The parser itself keeps rejecting lone surrogate escapes and exponents beyond
// its range; integers beyond 64 bits arrive as doubles, which no member takes.
boost::json::parse_options ReaderOptions() noexcept {
    boost::json::parse_options options;
    // Deeper than any answer (about ten levels), low enough to bound the parser's own recursion.
    options.max_depth = MaxJsonDepth;
    options.allow_comments = false;
    options.allow_trailing_commas = false;
    // Texts are UTF-8 throughout; an answer that is not cannot be trusted in any of its texts.
    options.allow_invalid_utf8 = false;
    return options;
}

// Which bytes a JSON string cannot hold as they are.
struct Escapes {
    bool needed[256];
    constexpr Escapes() noexcept : needed{} {
        for (int c = 0; c < 0x20; ++c) {
            needed[c] = true;
        }
        needed[static_cast<unsigned char>('"')] = true;
        needed[static_cast<unsigned char>('\\')] = true;
    }
};
constexpr Escapes EscapeTable;

// Whether any of the eight bytes in `word` needs escaping: below 0x20, '"' or '\\'. Exact, as
// only the question "any?" is asked.
bool AnyToEscape(std::uint64_t word) noexcept {
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::uint64_t highs = 0x8080808080808080U;
    const auto anyZero = [](std::uint64_t v) { return (v - ones) & ~v & highs; };
    return (((word - ones * 0x20) & ~word & highs) | anyZero(word ^ (ones * '"')) |
            anyZero(word ^ (ones * '\\'))) != 0;
}

// The position of the first byte from `from` on that needs escaping; text.size() if none.
// Texts are scanned eight bytes at a time, as most have nothing to escape.
std::size_t NextToEscape(std::string_view text, std::size_t from) noexcept {
    std::size_t i = from;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, sizeof word);
        if (AnyToEscape(word)) {
            break;
        }
    }
    for (; i < text.size(); ++i) {
        if (EscapeTable.needed[static_cast<unsigned char>(text[i])]) {
            return i;
        }
    }
    return text.size();
}

// The text being written, filled through a raw pointer: room is made once per piece, not per
// character.
class JsonText {
public:
    JsonText() noexcept : next_(text_.data()), end_(text_.data()) {}
    JsonText(const JsonText&) = delete;
    JsonText& operator=(const JsonText&) = delete;

    void Room(std::size_t size) {
        if (static_cast<std::size_t>(end_ - next_) < size) {
            Grow(size);
        }
    }
    // The Put functions expect Room for what they add.
    void Put(char c) noexcept { *next_++ = c; }
    void Put(std::string_view text) noexcept {
        std::memcpy(next_, text.data(), text.size());
        next_ += text.size();
    }
    void Integer(std::int32_t value) {
        Room(11);
        next_ = std::to_chars(next_, end_, value).ptr;
    }
    void Flag(bool value) {
        Room(5);
        Put(value ? std::string_view("true") : std::string_view("false"));
    }
    // Escapes what JSON requires; everything else, UTF-8 included, goes out as it is.
    void String(std::string_view text) {
        Room(text.size() + 2);
        Put('"');
        std::size_t plain = 0;
        for (std::size_t i = NextToEscape(text, 0); i < text.size();
             i = NextToEscape(text, i + 1)) {
            const auto c = static_cast<unsigned char>(text[i]);
            Put(text.substr(plain, i - plain));
            plain = i + 1;
            // Room for the escape and everything after it still unwritten.
            Room(6 + (text.size() - plain) + 1);
            Escape(c);
        }
        Put(text.substr(plain));
        Put('"');
    }
    std::string Take() {
        text_.resize(static_cast<std::size_t>(next_ - text_.data()));
        return std::move(text_);
    }

private:
    void Escape(unsigned char c) noexcept {
        static constexpr char hex[] = "0123456789abcdef";
        Put('\\');
        switch (c) {
        case '"':
            Put('"');
            break;
        case '\\':
            Put('\\');
            break;
        case '\b':
            Put('b');
            break;
        case '\f':
            Put('f');
            break;
        case '\n':
            Put('n');
            break;
        case '\r':
            Put('r');
            break;
        case '\t':
            Put('t');
            break;
        default:
            Put("u00");
            Put(hex[c >> 4]);
            Put(hex[c & 0xF]);
            break;
        }
    }

    void Grow(std::size_t size) {
        const auto used = static_cast<std::size_t>(next_ - text_.data());
        text_.resize(std::max({text_.size() * 2, used + size, std::size_t{256}}));
        next_ = text_.data() + used;
        end_ = text_.data() + text_.size();
    }

    std::string text_;
    char* next_ = nullptr;
    char* end_ = nullptr;
};

// [element,element,...], each element written by writeElement(index).
template <class WriteElement>
void WriteArray(JsonText& out, std::size_t size, const WriteElement& writeElement) {
    out.Room(1);
    out.Put('[');
    for (std::size_t e = 0; e < size; ++e) {
        if (e > 0) {
            out.Room(1);
            out.Put(',');
        }
        writeElement(e);
    }
    out.Room(1);
    out.Put(']');
}

void WriteObject(JsonText& out, const void* record, const Schema& schema) {
    out.Room(1);
    out.Put('{');
    bool first = true;
    for (std::size_t i = 0; i < schema.count; ++i) {
        const Field& field = schema.fields[i];
        const void* member = MemberOf(field, record);
        const void* nested = nullptr;
        if (field.kind == Kind::Record) {
            nested = field.nested().get(member);
            if (nested == nullptr) {
                continue; // an absent record is left out, never written as null
            }
        }
        out.Room(field.keyText.size());
        out.Put(first ? field.keyText.substr(1) : field.keyText);
        first = false;
        switch (field.kind) {
        case Kind::Text:
            out.String(*static_cast<const Core::TevString*>(member));
            break;
        case Kind::Integer:
            out.Integer(*static_cast<const std::int32_t*>(member));
            break;
        case Kind::Flag:
            out.Flag(*static_cast<const bool*>(member));
            break;
        case Kind::Texts: {
            const auto& list = *static_cast<const TextList*>(member);
            WriteArray(out, list.size(), [&](std::size_t e) { out.String(list[e]); });
            break;
        }
        case Kind::Integers: {
            const auto& list = *static_cast<const IntegerList*>(member);
            WriteArray(out, list.size(), [&](std::size_t e) { out.Integer(list[e]); });
            break;
        }
        case Kind::Record:
            WriteObject(out, nested, field.nested());
            break;
        case Kind::Records: {
            const Schema& elements = field.nested();
            WriteArray(out, elements.listSize(member), [&](std::size_t e) {
                const void* element = elements.listAt(member, e);
                if (element != nullptr) {
                    WriteObject(out, element, elements);
                } else {
                    out.Room(2);
                    out.Put("{}"); // a hole in a list is written as a record with nothing set
                }
            });
            break;
        }
        }
    }
    out.Room(1);
    out.Put('}');
}

} // namespace

void ReadRecord(void* record, const Schema& schema, std::string_view json) noexcept {
    if (json.substr(0, ByteOrderMark.size()) == ByteOrderMark) {
        json.remove_prefix(ByteOrderMark.size());
    }
    void* staging = nullptr;
    try {
        staging = schema.create();
    } catch (...) {
        return;
    }
    std::uint64_t completed = 0;
    try {
        boost::json::basic_parser<RecordBuilder> parser(ReaderOptions(), staging, schema,
                                                        completed);
        error_code error;
        const std::size_t used = parser.write_some(false, json.data(), json.size(), error);
        if (error || !parser.done() || used != json.size()) {
            completed = 0; // not one valid document: nothing of it is taken
        }
    } catch (...) {
        // Out of memory while building: the members complete by then are kept. Whatever was
        // half built went with the parser.
    }
    for (std::size_t i = 0; i < schema.count; ++i) {
        if ((completed >> i) & 1U) {
            TakeOver(schema.fields[i], record, staging);
        }
    }
    schema.destroy(staging);
}

Core::TevString WriteRecord(const void* record, const Schema& schema) noexcept {
    try {
        JsonText out;
        WriteObject(out, record, schema);
        return Core::TevString(out.Take());
    } catch (...) {
        return Core::TevString();
    }
}

} // namespace vanto::protocol
