// A strict little XML reader for checking dcplot's pictures: one root, every
// tag closed in order, attributes quoted and not repeated, only the five
// predefined entities, no control characters.
#pragma once

#include <map>
#include <string>
#include <vector>

struct XmlNode {
    std::string name, text;  // text: character data directly inside, entities resolved
    std::map<std::string, std::string> attrs;
    std::vector<XmlNode> children;

    std::string attr(const std::string& key) const;
    double num(const std::string& key) const;  // NaN when absent or not a number
    bool hasClass(const std::string& cls) const;
};

// The document's root element; error names the first fault, empty when none.
XmlNode parseXml(const std::string& text, std::string* error);

// Every element at or below node with the class word cls, in document order.
std::vector<const XmlNode*> withClass(const XmlNode& node, const std::string& cls);
