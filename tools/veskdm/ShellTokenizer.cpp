#include "ShellTokenizer.h"

#include <stdio.h>

#include "HalJson.h"

namespace veskdm {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

class Splitter {
  public:
    explicit Splitter(const std::string& line) : mLine(line) {}

    std::vector<std::string> run() {
        while (mPos < mLine.size()) {
            char c = mLine[mPos];
            if (isBlank(c) && mBrackets.empty()) {
                endWord();
                ++mPos;
            } else if (c == '#' && !mInWord) {
                break;
            } else if (c == '\'') {
                singleQuoted();
            } else if (c == '"') {
                jsonString();
            } else if (c == '\\') {
                escaped();
            } else {
                if (c == '[' || c == '{') mBrackets.push_back(c);
                if (c == ']' || c == '}') closeBracket(c);
                append(c);
                ++mPos;
            }
        }
        if (!mBrackets.empty()) {
            throw ArgumentError(std::string("'") + mBrackets.back() + "' is not closed");
        }
        endWord();
        return mWords;
    }

  private:
    void append(char c) {
        mWord += c;
        mInWord = true;
    }

    void endWord() {
        if (mInWord) mWords.push_back(mWord);
        mWord.clear();
        mInWord = false;
    }

    void closeBracket(char c) {
        char open = c == ']' ? '[' : '{';
        if (mBrackets.empty())
            throw ArgumentError(std::string("'") + c + "' without '" + open + "'");
        if (mBrackets.back() != open) {
            throw ArgumentError(std::string("'") + c + "' closes '" + mBrackets.back() + "'");
        }
        mBrackets.pop_back();
    }

    void singleQuoted() {
        size_t end = mLine.find('\'', mPos + 1);
        if (end == std::string::npos) throw ArgumentError("unterminated '");
        mWord += mLine.substr(mPos + 1, end - mPos - 1);
        mInWord = true;
        mPos = end + 1;
    }

    void jsonString() {
        append('"');
        for (++mPos; mPos < mLine.size(); ++mPos) {
            char c = mLine[mPos];
            append(c);
            if (c == '\\' && mPos + 1 < mLine.size()) {
                append(mLine[++mPos]);
            } else if (c == '"') {
                ++mPos;
                return;
            }
        }
        throw ArgumentError("unterminated \"");
    }

    void escaped() {
        if (mPos + 1 >= mLine.size()) throw ArgumentError("the line ends with a backslash");
        append(mLine[mPos + 1]);
        mPos += 2;
    }

    const std::string& mLine;
    size_t mPos = 0;
    std::string mWord;
    bool mInWord = false;
    std::string mBrackets;  // the open brackets, innermost last
    std::vector<std::string> mWords;
};

}  // namespace

std::vector<std::string> splitShellLine(const std::string& line) {
    // A carriage return that ends the line is its CRLF line end, not part of it.
    size_t end = !line.empty() && line.back() == '\r' ? line.size() - 1 : line.size();
    for (size_t i = 0; i < end; ++i) {
        unsigned char c = static_cast<unsigned char>(line[i]);
        if ((c < 0x20 && c != '\t') || c == 0x7f) {
            char byte[8];
            snprintf(byte, sizeof(byte), "0x%02x", c);
            throw ArgumentError(std::string("control byte ") + byte + " at column " +
                                std::to_string(i + 1));
        }
    }
    return Splitter(line).run();
}

}  // namespace veskdm
