#include "xml_doc.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <sstream>
#include <stdexcept>

namespace {

struct Reader {
    const std::string& s;
    std::size_t at = 0;

    [[noreturn]] void fail(const std::string& why) {
        throw std::runtime_error(why + " at offset " + std::to_string(at));
    }
    bool starts(const char* word) const { return s.compare(at, std::strlen(word), word) == 0; }
    void expect(const char* word) {
        if (!starts(word)) fail(std::string("expected ") + word);
        at += std::strlen(word);
    }
    // Blanks, and the declaration before the root.
    void blanks() {
        while (at < s.size() && std::strchr(" \t\r\n", s[at])) at++;
        if (starts("<?") && s.find("?>", at) != std::string::npos) at = s.find("?>", at) + 2;
        while (at < s.size() && std::strchr(" \t\r\n", s[at])) at++;
    }
    std::string name() {
        std::size_t start = at;
        while (at < s.size() && (std::isalnum(static_cast<unsigned char>(s[at])) || s[at] == '-' ||
                                 s[at] == ':' || s[at] == '_')) {
            at++;
        }
        if (at == start) fail("expected a name");
        return s.substr(start, at - start);
    }
    // Character data up to stop (not taken), entities resolved.
    std::string chars(char stop) {
        static const char* const kEntities[][2] = {
            {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}};
        std::string out;
        while (at < s.size() && s[at] != stop) {
            unsigned char c = s[at];
            if (c == '<' || (c < 0x20 && !std::strchr("\t\r\n", c))) fail("bad character");
            if (c != '&') {
                out += s[at++];
                continue;
            }
            const auto* e = std::begin(kEntities);
            while (e != std::end(kEntities) && !starts((*e)[0])) e++;
            if (e == std::end(kEntities)) fail("bad entity");
            out += (*e)[1];
            at += std::strlen((*e)[0]);
        }
        if (at >= s.size()) fail("unexpected end");
        return out;
    }
    void element(XmlNode* node) {
        expect("<");
        node->name = name();
        for (std::size_t before = at; !starts("/>") && !starts(">"); before = at) {
            while (at < s.size() && std::strchr(" \t\r\n", s[at])) at++;
            if (at == before) fail("attributes run together");
            if (starts("/>") || starts(">")) break;
            std::string key = name();
            expect("=");
            if (!starts("\"")) fail("unquoted attribute " + key);
            at++;
            if (!node->attrs.emplace(key, chars('"')).second) fail("repeated " + key);
            at++;
        }
        if (starts("/>")) return void(at += 2);
        for (at++;;) {
            node->text += chars('<');
            if (!starts("</")) {
                element(&node->children.emplace_back());
                continue;
            }
            at += 2;
            if (name() != node->name) fail("mismatched end of " + node->name);
            return expect(">");
        }
    }
};

void collect(const XmlNode& node, const std::string& cls, std::vector<const XmlNode*>* out) {
    if (node.hasClass(cls)) out->push_back(&node);
    for (const XmlNode& child : node.children) collect(child, cls, out);
}

}  // namespace

std::string XmlNode::attr(const std::string& key) const {
    auto it = attrs.find(key);
    return it == attrs.end() ? "" : it->second;
}

double XmlNode::num(const std::string& key) const {
    std::string value = attr(key);
    char* end = nullptr;
    double number = std::strtod(value.c_str(), &end);
    return value.empty() || *end ? std::nan("") : number;
}

bool XmlNode::hasClass(const std::string& cls) const {
    std::istringstream words(attr("class"));
    for (std::string word; words >> word;) {
        if (word == cls) return true;
    }
    return false;
}

XmlNode parseXml(const std::string& text, std::string* error) {
    XmlNode root;
    Reader r{text};
    try {
        r.blanks();
        r.element(&root);
        r.blanks();
        if (r.at != text.size()) r.fail("content after the root");
        error->clear();
    } catch (const std::runtime_error& e) {
        *error = e.what();
    }
    return root;
}

std::vector<const XmlNode*> withClass(const XmlNode& node, const std::string& cls) {
    std::vector<const XmlNode*> out;
    collect(node, cls, &out);
    return out;
}
