#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace marrowbox {

/// An incremental SHA-256 or MD5. Not safe to share between threads; throws std::runtime_error when the
/// library refuses.
class Digest {
  public:
    static Digest sha256();
    static Digest md5();

    void update(std::string_view bytes);
    /// The raw digest: 32 or 16 bytes. Ends the digest.
    std::string finish();

  private:
    struct Free {
        void operator()(evp_md_ctx_st* context) const;
    };
    explicit Digest(const char* name);
    std::unique_ptr<evp_md_ctx_st, Free> context_;
};

/// Lower-case hexadecimal, two digits a byte.
std::string hexadecimal(std::string_view bytes);

/// The raw SHA-256 of a text.
std::string sha256(std::string_view bytes);

} // namespace marrowbox
