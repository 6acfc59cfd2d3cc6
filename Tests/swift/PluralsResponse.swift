struct PluralsApi2fa: Codable, Hashable {
}
struct Addresse: Codable, Hashable {
}
struct Category: Codable, Hashable {
}
struct PluralsClass: Codable, Hashable {
}
struct Data: Codable, Hashable {
}
struct Glass: Codable, Hashable {
}
struct Ie: Codable, Hashable {
}
struct ApiResponse: Codable, Hashable {
}
struct Response: Codable, Hashable {
    let items: [ApiResponse]
}
struct S: Codable, Hashable {
}
struct Sery: Codable, Hashable {
}
struct Statu: Codable, Hashable {
}
struct PluralsUserId: Codable, Hashable {
}
struct PluralsResponse: Codable, Hashable {
    let value2fa: PluralsApi2fa
    let addresses: [Addresse]
    let categories: [Category]
    let `class`: PluralsClass
    let data: [Data]
    let glass: [Glass]
    let ies: [Ie]
    let responses: [Response]
    let s: [S]
    let series: [Sery]
    let status: [Statu]
    let userId: PluralsUserId

    enum CodingKeys: String, CodingKey {
        case value2fa = "2fa"
        case `class` = "class"
        case userId = "user-id"
    }
}
