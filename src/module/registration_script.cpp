#include "module/registration_script.hpp"

#include <charconv>
#include <optional>
#include <string>

#include "component/failure.hpp"

namespace orlix {
namespace {

using Key = RegistrationScript::Key;
using Rule = RegistrationScript::Rule;
using Root = RegistrationScript::Root;
using Value = RegistrationScript::Value;

constexpr int kDeepest = 64;  // levels of braces

struct Word {
    std::string text;
    bool quoted = false;
    int line = 0;
};

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    const auto folded = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; };
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (folded(a[i]) != folded(b[i])) return false;
    return true;
}

class Words {
public:
    explicit Words(std::string_view script) : left_(script) { Advance(); }

    int line() const { return current_ ? current_->line : line_; }
    bool AtEnd() const { return !current_; }
    bool Is(std::string_view keyword) const {
        return current_ && !current_->quoted && EqualIgnoringCase(current_->text, keyword);
    }
    bool Take(std::string_view keyword) {
        if (!Is(keyword)) return false;
        Advance();
        return true;
    }
    void Expect(std::string_view keyword, const char* otherwise) {
        if (!Take(keyword)) throw ScriptError(line(), otherwise);
    }
    Word Next(const char* otherwise) {
        if (!current_) throw ScriptError(line(), otherwise);
        Word word = std::move(*current_);
        Advance();
        return word;
    }

private:
    static bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

    char TakeCharacter() {
        const char c = left_.front();
        if (static_cast<unsigned char>(c) >= 0x80 || c == '\0') throw ScriptError(line_, "a character is not ASCII");
        if (c == '\n') ++line_;
        left_.remove_prefix(1);
        return c;
    }

    void Advance() {
        while (!left_.empty() && IsBlank(left_.front())) TakeCharacter();
        current_.reset();
        if (left_.empty()) return;
        Word word{{}, left_.front() == '\'', line_};
        if (!word.quoted) {
            while (!left_.empty() && !IsBlank(left_.front())) word.text.push_back(TakeCharacter());
        } else {
            TakeCharacter();
            for (bool open = true; open;) {
                if (left_.empty()) throw ScriptError(word.line, "a quote is not closed");
                const char c = TakeCharacter();
                if (c != '\'') {
                    word.text.push_back(c);
                } else if (!left_.empty() && left_.front() == '\'') {
                    word.text.push_back(TakeCharacter());
                } else {
                    open = false;
                }
            }
            if (!left_.empty() && !IsBlank(left_.front())) throw ScriptError(line_, "no blank after a quote");
        }
        current_ = std::move(word);
    }

    std::string_view left_;
    int line_ = 1;
    std::optional<Word> current_;
};

class Parser {
public:
    Parser(std::string_view script, const WideString& modulePath) : words_(script), modulePath_(modulePath) {}

    std::vector<Root> Script() {
        std::vector<Root> roots;
        while (!words_.AtEnd()) {
            Root root{RootNamed(), {}};
            std::vector<Value> none;
            Block(none, root.keys, 1);
            roots.push_back(std::move(root));
        }
        return roots;
    }

private:
    RegistryRoot RootNamed() {
        if (words_.Take("HKCR")) return RegistryRoot::Classes;
        if (words_.Take("HKLM")) return RegistryRoot::LocalMachine;
        if (words_.Take("HKCU")) return RegistryRoot::CurrentUser;
        throw ScriptError(words_.line(), "a root is missing");
    }

    void Block(std::vector<Value>& values, std::vector<Key>& keys, int depth) {
        if (depth > kDeepest) throw ScriptError(words_.line(), "too many braces are open");
        words_.Expect("{", "an opening brace is missing");
        while (!words_.Take("}")) {
            if (words_.AtEnd()) throw ScriptError(words_.line(), "a closing brace is missing");
            const bool keep = words_.Take("NoRemove");
            if (words_.Is("val")) {
                if (depth == 1) throw ScriptError(words_.line(), "a root takes no values");
                values.push_back(NamedValue(keep));
            } else {
                keys.push_back(NamedKey(keep ? Rule::NoRemove : KeyRule(), depth));
            }
        }
    }

    Rule KeyRule() {
        if (words_.Take("ForceRemove")) return Rule::ForceRemove;
        if (words_.Take("Delete")) return Rule::Delete;
        return Rule::Plain;
    }

    Key NamedKey(Rule rule, int depth) {
        Key key;
        key.rule = rule;
        const int line = words_.line();
        key.name = Name("the name of a key is missing");
        if (key.name.empty()) throw ScriptError(line, "the name of a key is empty");
        if (key.name.find(OLESTR('\\')) != WideString::npos)
            throw ScriptError(line, "the name of a key holds a backslash");
        if (rule == Rule::Delete) return key;
        if (words_.Take("=")) key.values.push_back(ValueAfterEquals({}, rule == Rule::NoRemove));
        if (words_.Is("{")) Block(key.values, key.keys, depth + 1);
        return key;
    }

    Value NamedValue(bool keep) {
        words_.Expect("val", "a value is missing");
        WideString name = Name("the name of a value is missing");
        words_.Expect("=", "an equals sign is missing");
        return ValueAfterEquals(std::move(name), keep);
    }

    Value ValueAfterEquals(WideString name, bool keep) {
        Value value;
        value.name = std::move(name);
        value.keep = keep;
        if (words_.Take("d")) {
            value.isNumber = true;
            value.number = Number();
        } else {
            words_.Expect("s", "the type of a value is neither s nor d");
            value.text = Expanded(words_.Next("a value is missing"));
        }
        return value;
    }

    uint32_t Number() {
        const Word word = words_.Next("a number is missing");
        const bool hexadecimal = word.text.starts_with("0x") || word.text.starts_with("0X");
        const char* const end = word.text.data() + word.text.size();
        uint32_t number = 0;
        const auto [stop, error] =
            std::from_chars(word.text.data() + (hexadecimal ? 2 : 0), end, number, hexadecimal ? 16 : 10);
        if (error != std::errc() || stop != end) throw ScriptError(word.line, "a number is not one below 2^32");
        return number;
    }

    WideString Name(const char* otherwise) {
        const int line = words_.line();
        for (const char* taken : {"{", "}", "=", "NoRemove", "ForceRemove", "Delete", "val"})
            if (words_.Is(taken)) throw ScriptError(line, otherwise);
        return Expanded(words_.Next(otherwise));
    }

    WideString Expanded(const Word& word) const {
        WideString text;
        for (size_t i = 0; i < word.text.size(); ++i) {
            if (word.text[i] != '%') {
                text.push_back(static_cast<OLECHAR>(word.text[i]));
                continue;
            }
            const size_t end = word.text.find('%', i + 1);
            if (end == std::string::npos) throw ScriptError(word.line, "a percent sign is not closed");
            const auto name = std::string_view(word.text).substr(i + 1, end - i - 1);
            if (name.empty())
                text.push_back(OLESTR('%'));
            else if (EqualIgnoringCase(name, "MODULE"))
                text += modulePath_;
            else
                throw ScriptError(word.line, "a placeholder is unknown");
            i = end;
        }
        return text;
    }

    Words words_;
    const WideString& modulePath_;
};

RegistryKey Below(const RegistryKey& parent, const WideString& name) {
    return {parent.root, parent.path.empty() ? name : parent.path + OLESTR('\\') + name};
}

void AddKeys(RegistryStore& store, const RegistryKey& parent, const std::vector<Key>& keys) {
    for (const Key& key : keys) {
        const RegistryKey here = Below(parent, key.name);
        if (key.rule == Rule::ForceRemove || key.rule == Rule::Delete) PassOn(store.DeleteTree(here));
        if (key.rule == Rule::Delete) continue;
        PassOn(store.CreateKey(here));
        for (const Value& value : key.values)
            PassOn(value.isNumber ? store.SetNumber(here, value.name, value.number)
                                  : store.SetText(here, value.name, value.text));
        AddKeys(store, here, key.keys);
    }
}

// Keeps the first failure.
void Note(HRESULT result, HRESULT& first) {
    if (FAILED(result) && SUCCEEDED(first)) first = result;
}

// In the reverse order of adding: from the last key to the first, and from the innermost outwards.
void RemoveKeys(RegistryStore& store, const RegistryKey& parent, const std::vector<Key>& keys, HRESULT& failure) {
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        const RegistryKey here = Below(parent, key->name);
        if (key->rule == Rule::Delete) continue;
        if (key->rule == Rule::ForceRemove) {
            Note(store.DeleteTree(here), failure);
            continue;
        }
        RemoveKeys(store, here, key->keys, failure);
        for (const Value& value : key->values)
            if (!value.keep) Note(store.DeleteValue(here, value.name), failure);
        if (key->rule != Rule::NoRemove) Note(store.DeleteIfEmpty(here), failure);
    }
}

}  // namespace

ScriptError::ScriptError(int line, const char* what)
    : std::runtime_error("line " + std::to_string(line) + ": " + what), line_(line) {}

RegistrationScript::RegistrationScript(std::string_view script, const WideString& modulePath)
    : roots_(Parser(script, modulePath).Script()) {}

void RegistrationScript::Add(RegistryStore& store) const {
    for (const Root& root : roots_) AddKeys(store, {root.root, {}}, root.keys);
}

void RegistrationScript::Remove(RegistryStore& store) const {
    HRESULT failure = S_OK;
    for (auto root = roots_.rbegin(); root != roots_.rend(); ++root)
        RemoveKeys(store, {root->root, {}}, root->keys, failure);
    PassOn(failure);
}

}  // namespace orlix
