struct TagA: Codable, Hashable {
}
struct Tag: Codable, Hashable {
    let items: [TagA]
}
