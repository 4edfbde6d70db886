// MD5 over every length from 0 to 200 bytes, in one piece and in parts. The digests were worked out elsewhere.
#include <gtest/gtest.h>

#include <string>

#include "pendra/auth.h"

namespace {

constexpr size_t kLongest = 200;

// Of "abcdefghijklmnopqrstuvwxyzabc...", by its length.
constexpr const char* kDigests[kLongest + 1] = {
    "d41d8cd98f00b204e9800998ecf8427e", "0cc175b9c0f1b6a831c399e269772661", "187ef4436122d1cc2f40dc2b92f0eba0",
    "900150983cd24fb0d6963f7d28e17f72", "e2fc714c4727ee9395f324cd2e7f331f", "ab56b4d92b40713acc5af89985d4b786",
    "e80b5017098950fc58aad83c8c14978e", "7ac66c0f148de9519b8bd264312c4d64", "e8dc4081b13434b45189a720b77b6818",
    "8aa99b1f439ff71293e95357bac6fd94", "a925576942e94b2ef57a066101b48876", "92b9cccc0b98c3a0b8d0df25a421c0e3",
    "9fc9d606912030dca86582ed62595cf7", "22aebdd14e72f6b379476a146347d546", "0845a5972cd9ad4a46bad66f1253581f",
    "8a7319dbf6544a7422c9e25452580ea5", "1d64dce239c4437b7736041db089e1b9", "9a8d9845a6b4d82dfcb2c2e35162c830",
    "fbaf6ecf6acbe54aa33858818d351197", "320620468e1c404151741bbbaff2ada5", "6aa8de45918023095f6e831efe48d00b",
    "ce7e0645565441733f794b29a30afd05", "44a66044834cbe55040089cabfc102d5", "74525c3a55bdcaee9139bd1e33c764fb",
    "0c0e84cf0bb7a8688e5238dbbc1c3953", "f1784031a03a8f5b11ead16ab90cc18e", "c3fcd3d76192e4007dfb496cca67e13b",
    "d23667a653e83d496063587d7729beeb", "78c852c9829c7fb59fc45b81df4bb897", "aaad3d212662a222baf2ec385a3f6a8d",
    "d6f81d0cf8ad52a23fb9ef4f1509b5f0", "f6b51fc21ba16839f4ad11aa4a1e1840", "9527e816584a36b5a7a21cdf2446018c",
    "ee941f57b0f95a19973ef762658094dd", "89df04f9f5122fbe7b6e8b455de5dbf7", "b43c4a9e2bac7fcbe33850b46dc08807",
    "b88ed0007535c3b3889a846f7d2cfc44", "54eceb0d89313c2023c87bdc0e34327a", "6712aaaf32cb9733525751689286b325",
    "c2f2a6c072a9bbaaf89fa621e7cab397", "33a83be957284c6af659466d02c0f5ce", "02778fb97d6a2b5003db8e1be4190d08",
    "833550f5ad9f33df84a96608e385f061", "1c5c0e850b06c679210b805e2b8a94f0", "6e84c32e2708e2816f5a98f92b7ed10a",
    "7c83ec77a7e1ea3d192e022ba0c72b3e", "d44bf034acf2cff3225f821d76027db7", "d2b03288300ed8d973ccf805fc8fc4d0",
    "abf1bf1ce6f010cf7174f0791b96a8e6", "e08f82feca634a2ae9b2a134396cf8cf", "1c11036291fa7d815d5dfe6bc0cd2a84",
    "952df52530be13744ab96701757b85dd", "55032b1ba8bc84b3755818c8a48ea031", "a1b3d074330824611ae543202f0f7320",
    "5e59320acd5b076d5079518a91bf23ca", "0d7ae056b2f015cd7dc67494efd658f1", "31fcfb5165169eb55898e7e4cf34d19a",
    "fd62afaf3aa1e2a52882cb464f5ccc4d", "defda3b426bba3fdd171e0e468929ca8", "c6875ce3883e0f26a34dc045106f9450",
    "0e2806b19d38a12191fe1b601aab7b12", "8b57f7e0623fc0e7a04b379914988fd9", "47d0af9c0a3338abc8c6ed7452ee9d50",
    "1b30c0670c15e7da3c2ba7bce77ebe99", "a2eaf6295c32adc403865fd96a2f182b", "eba2cce0ca8df47e62414a736b3105a2",
    "69e6c221c37a05c5239134f8f0b5f056", "a478554d6225e9f62d430398fa00ce57", "944956bfaed295fe7e5dab40a3227787",
    "17431d57910979b6a779c4e153c431f3", "d4a51b38454da822e68776beb06f3121", "fe5ec2458d445a1d31613e96811e3a4e",
    "5b96fa2e21efdf65c1344078d4472c25", "059811c029c89518d5ed6082a0a76c29", "87246c0ad8db3af738ecc2126bae50c7",
    "60d0fc8aa3052e0f1c534b681fa3e39d", "8b19341f6eaae095b774d30e219cabf7", "ae95919b790b0b58e1b7f36813c00492",
    "15061fc3840896c5299a5b8cc1cf5b5f", "75b7e92a2bcbb036c0217bd91fa43fc2", "e2d68679c1abf259dd05ccb6aa5dd09e",
    "a319048bf2913623bf502fe18a6d0a49", "c363fce58ae5c64d288f4dfad91821cd", "6e0c32dd60205eed0cfcba86abc5bc0b",
    "5193693d484318e879a6162e3bd3086f", "aa3f2a9b1d2ee91c7ec8ce9a51d29253", "af771cfa4ee7e440d9a36586b593a7a3",
    "cc1aad14c907e0a8b6ad0532fc33105b", "94b31d7cee825c590f647d2914c1d520", "ed13dfd7c132c88df16e2443a7c68ff4",
    "f27816837599b74e4fcb5b3a3ab2abab", "77587bb1e41e694b1e2e83e323632cf4", "48c5d53e8c37fd8fe9da37d6f9334508",
    "9109a73288a6a70b62f03de4f8390489", "6a2b21da9c1a7372e3bb1cdf1d50a58b", "8820fabfa271f4ca21d44bd6e5c254ce",
    "820ce642fca81c35cefa1465abb37e13", "f648b255c2ad6a51304a34933b78b9cb", "95e44cf3ba9461b1b100a23e08c8e3a3",
    "04e5a2e9fbd069e37a04a803975534a2", "c850e15189ee11cd8535000b8d8fd6de", "e4ad680b85c670e6563aa3b4fa7a998f",
    "57e42d947da526d384887b1149ba9123", "2d8e7ebdfbf30f0858f4acebb00d1368", "44077f4856c7d6c519fce5dfc0fb1fcf",
    "fcdc127b52a2226f1633fe8167ffdd92", "97de0c1f71807cd76311f5fa5879e67f", "fd11e2e1e070968d99990e2bac67219c",
    "9c3d7e8b46d2c279d84a1a2b7b0f81a1", "80654a3e746b41dca6c4df73c1d8bab6", "c99c1fff891be6e1d54b96bba4ef03d3",
    "476e3ea2d442e99a17c0ea197686a3c5", "8b2440f973022830d439a97aadfbc74c", "77e186d04ad9616a9e92a65c2384603c",
    "c755ce5b26c78db528eae5c086fba473", "f93b1c4b5812187f2c9d643b13a9de14", "24d22418a6f4e644898e7f3bec83dabe",
    "c468c374e182677c9c4e6b497446d466", "610d6e00f819e9303e2e6230fe6e235c", "b05187e08da41fa3ef16bd56afaafd99",
    "62af9b597a9f55e16ab2b897387fc052", "ac6fa3571578e922ab77f3d08a1ed8c0", "3b65019ed1cb2a1d21702f2ccbfc192b",
    "623eb77471fbc56ea9334e2ff180e303", "cd5364b61cb9bd2e651f8af856001f79", "92b66f9df7f152aae139a9bd4b5e1492",
    "93f2ae44bcbf20e77d6f750958818af1", "f41f37f8b5a7782d5cfeafc43e3d3c1c", "3e8c1ccbd71838ef3df4b72e57fb9bf6",
    "a9ca66cd8dd6b0f6d8cbb6a21bbf5206", "a69d9a9991712224e6a899482474c56c", "9751b6e6ad930afee297860d7b82dfca",
    "d9983299e0f5e4deb0e97a4bf1423a12", "16c894026b15a8118323df3a9953e22c", "4a2ac974acbc4be245bcffe27224e886",
    "227d3016fd5033f901b365383d000a00", "d3dda8155b0acc73e1ad6e35482465ff", "670db67d614aaadecfda7daecac3c028",
    "b2fa653be19d5cbd6aff96cc2a33e3b9", "c56944c83cc841256c7886bdddfe592e", "cfe11c8b1f3e93e15b2a913e21351721",
    "ccc11cde4da9d23bf93061d1c1e1b092", "ce61599385253619d4fedf05d071c5ba", "612a8d0c0ed9fd27a7c9356e1df0da26",
    "cba64acb0d60fb70184afe9c8a05a85c", "049d561526d5d6364117d222487aced0", "22a7223f34c5bcf52c2f08256fbd1497",
    "e3722c2ca88f91dab259e209e44017f7", "af2ed3b3103ed656c4fa8c968529627f", "68b65c73cbb32d9bd8dc4a589d7d3200",
    "e6a9784f9ea6c5e6ecf36ef933c0dcb2", "2ee1709b8f822424028b2255093558ed", "687063b0d2a7843fd43d40146644d6b9",
    "97e3e17824e3f3b2e37243aad8f91bd0", "f8e0cb8ca73de4775f3777bc701f9f5a", "dac57fece4eca52f92b9118d3f804eab",
    "3949b933c947d9695c98a8915997a007", "23d3ac5a62aa248bbb90e9c9df32812e", "cc6524ede3d5a18f6db1929bb6b688ae",
    "90278363f97c886669ab1610983d2518", "985af8958305eccdd70761dfb1259613", "12258fe31a11fcb0aa2c4cf3f4917d68",
    "e93257f3faae4a6e391f64f15a338ab1", "3d1f4deb3d91b2e876d892f95a7524d5", "99002e612b5d22b24ec54123eab38fea",
    "09573755c26f23365bd5351d67ea2f11", "0ddb2bb5a7a4a7870ebde0041a948dea", "eb5e05b13d283ae3dc766e57e476ed3c",
    "68725c928a34173108975d44dad6d0ab", "9d43f763d2b2a4769aab50198363c911", "ed5c9f5071a18e9d5d70de53d1b0f4c6",
    "14d4b688b326cd069d82c7bbc27b8417", "5efda95dae991e6e32b5be4ccfcdcde2", "8fe4b9b1ff1e670a0bc60413efa54619",
    "d3ef88389d27025093f92fcfb9a8ee1e", "a5199abc0f8829115da0ba9aeae7c18f", "6f5199a574abefa1898913b48375dda9",
    "910d27e8a549a98fc06995019593d080", "078775ce3f0ec7078d869d3215219b64", "6f3fb53d773896219c09ff7f6092de9e",
    "b7aac8f44601a1135b8c2a6a8ce456a2", "c1937646c3c03c5636ea07b3b2e1cd26", "bebfd210990ce689edef3726cfbb2433",
    "05b4026bb2e38f0b385b2879d71cef5f", "92b0dd0c237b69e781732389f76cac9e", "290bb8a66fdb9f282ae7f04a8b8e5abc",
    "123f0aafae1816551a915c76129696fb", "5219d4b22c1d5beb57a57f16cca6b255", "391351cfd3d0a116f64fbf3f525a03e6",
    "acc7760da69659d0d9927ae60ccbe780", "198d86d17d7f86e4d5f5df5c759711c0", "e690e7e7b01106c0cfac395bae19635d",
    "95d1689762c5afbfa124e786d1a22425", "c7d65087764c552da04c38bb38f5196b", "e2aa409ec40fdf04c28f7dc7f09916b1",
    "8e9d00c5f90f0c18cecd470ae6bab3fa", "fdd7ab8aebcdf0df8b6fee4cf486f49c", "d46e9471a88d8c138e3b6c584a493af0",
    "7febf9f196006e492fc961d23d81c86e", "9e6c2e5e679d6992c93e231f3e08d9f0", "32cce8c4f2bf6f04dbb71b5cb9e37c30",
};

std::string alphabet(size_t length) {
    std::string text;
    for (size_t i = 0; i < length; i++)
        text += static_cast<char>('a' + i % 26);
    return text;
}

void update(MD5_CTX& context, const std::string& text) {
    MD5Update(&context, reinterpret_cast<const unsigned char*>(text.data()), static_cast<unsigned>(text.size()));
}

std::string finish(MD5_CTX& context) {
    unsigned char digest[16];
    MD5Final(digest, &context);
    char hex[33];
    return Hex2String(digest, hex, 16);
}

TEST(Md5Lengths, WholeText_HasItsDigest) {
    for (size_t length = 0; length <= kLongest; length++)
        EXPECT_STREQ(kDigests[length], MD5Encryption(alphabet(length).c_str())) << length;
}

TEST(Md5Lengths, TextInTwoParts_HasTheSameDigest) {
    for (size_t length = 0; length <= kLongest; length++) {
        const std::string text = alphabet(length);
        for (size_t first = 0; first <= length; first++) {
            MD5_CTX context;
            MD5Init(&context);
            update(context, text.substr(0, first));
            update(context, text.substr(first));
            ASSERT_EQ(kDigests[length], finish(context)) << first << " of " << length;
        }
    }
}

TEST(Md5Lengths, TextInEqualParts_HasTheSameDigest) {
    const std::string text = alphabet(kLongest);
    for (size_t part = 1; part <= kLongest; part++) {
        MD5_CTX context;
        MD5Init(&context);
        for (size_t offset = 0; offset < text.size(); offset += part)
            update(context, text.substr(offset, part));
        ASSERT_EQ(kDigests[kLongest], finish(context)) << part;
    }
}

} // namespace
