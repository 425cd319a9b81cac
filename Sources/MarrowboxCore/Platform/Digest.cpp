#include "Platform/Digest.h"

#include <array>
#include <openssl/evp.h>
#include <stdexcept>

namespace marrowbox {

namespace {

void require(int success) {
    if (success != 1)
        throw std::runtime_error("The digest library refused to work.");
}

} // namespace

void Digest::Free::operator()(evp_md_ctx_st* context) const {
    EVP_MD_CTX_free(context);
}

Digest::Digest(const char* name) : context_(EVP_MD_CTX_new()) {
    require(context_ != nullptr);
    require(EVP_DigestInit_ex2(context_.get(), EVP_get_digestbyname(name), nullptr));
}

Digest Digest::sha256() {
    return Digest("SHA256");
}
Digest Digest::md5() {
    return Digest("MD5");
}

void Digest::update(std::string_view bytes) {
    require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
}

std::string Digest::finish() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> raw{};
    unsigned int length = 0;
    require(EVP_DigestFinal_ex(context_.get(), raw.data(), &length));
    return {raw.begin(), raw.begin() + length};
}

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += digits[value >> 4];
        text += digits[value & 15];
    }
    return text;
}

std::string sha256(std::string_view bytes) {
    Digest digest = Digest::sha256();
    digest.update(bytes);
    return digest.finish();
}

} // namespace marrowbox
