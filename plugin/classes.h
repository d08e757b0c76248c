// The class definitions that the host gets, in the order of their registration.
#pragma once

#include "abi/records.h"

namespace zqv::plugin {

// Not constant: registration adjusts flags, sizes and versions in place, and the host writes where
// it puts each record.
extern abi::REALclassDefinition kMimeBodyClass;
extern abi::REALclassDefinition kMimeHeaderClass;
extern abi::REALclassDefinition kMimeEntityClass;
extern abi::REALclassDefinition kMimeAddressClass;
extern abi::REALclassDefinition kMimeGroupClass;
extern abi::REALclassDefinition kMimeAddressListClass;
extern abi::REALclassDefinition kMimeMailboxListClass;
extern abi::REALclassDefinition kMimeMailboxClass;
extern abi::REALclassDefinition kMimeFieldClass;
extern abi::REALclassDefinition kMimeEmailClass;
extern abi::REALclassDefinition kMimeAttachmentClass;

}  // namespace zqv::plugin
