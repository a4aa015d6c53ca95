#include "ArrayLookup.h"

namespace qelta::bench {

const void* ArrayLookup::Find(std::size_t position) const {
  return position < m_Blocks.size() ? m_Blocks[position] : nullptr;
}

}  // namespace qelta::bench
