#include <KAL_AUTO_Node/Business_Rules.h>
#include <cstdint>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

namespace {

using namespace KAL_AUTO_Node;

// Labels have to fit the display of this host's telephones.
class ShortLabels : public TextValidator {
  public:
    bool ValidateText(const std::string& text) override { return text.size() <= 20; }
};

// Missing nodes are made elsewhere; nobody is asked.
class NoNewNodes : public ConfirmationDialog {
  public:
    std::int32_t Ask(std::int16_t /*kind*/, const std::string& /*message*/, std::int32_t /*icon*/,
                     std::int32_t /*buttons*/, const std::string& /*title*/) override {
        return Stop;
    }
};

} // namespace

int main() {
    ComponentFactory components;
    components.Register(TextValidator::Identifier, [] { return std::make_unique<ShortLabels>(); });
    components.Register(ConfirmationDialog::Identifier, [] { return std::make_unique<NoNewNodes>(); });
    try {
        Business_Rules rules(components);
        rules.ShowNodeEditor(1, 2, 1); // configuration, partition, node; returns when the editor is closed
        return rules.Opened() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
