#include "samples/notation.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace kova::samples {

std::string fullName(const std::string &name) {
  return name == "V" ? "van_ext_blk_size" : name == "U" ? "usr_ext_blk_size" : name;
}

std::vector<Node> parseNodes(std::istringstream &tokens) {
  std::vector<Node> nodes;
  std::size_t times = 0;
  for (std::string token; tokens >> token && token != "}";) {
    const std::size_t end = std::min(token.find_first_of("*="), token.size());
    const std::string name = fullName(token.substr(0, end));
    const std::string value = end < token.size() ? token.substr(end + 1) : "1";
    if (token != "{" && token[end] != '=')
      nodes.insert(nodes.end(), times = std::stoul(value), Node{name, {}, "", {}});
    const std::vector<Node> children = token == "{" ? parseNodes(tokens) : std::vector<Node>();
    for (Node &node : std::span(nodes).last(times)) {
      if (token == "{")
        node.child = children;
      else if (name == "text")
        std::ranges::replace_copy(value, std::back_inserter(node.text), '~', ' ');
      else if (token[end] == '=')
        node.set[name] = static_cast<Word>(std::stoll(value, nullptr, 0));
    }
  }
  return nodes;
}

} // namespace kova::samples
