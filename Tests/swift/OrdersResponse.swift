struct OrderA: Codable, Hashable {
    let note: String
}
struct Line: Codable, Hashable {
    let qty: Double
    let sku: String
}
struct Order: Codable, Hashable {
    let id: String
    let items: [OrderA]
    let lines: [Line]
    let total: Double
}
struct OrdersResponse: Codable, Hashable {
    let items: [Order]
    let nextPage: String?
    let page: Double
    let totalCount: Double

    enum CodingKeys: String, CodingKey {
        case nextPage = "next_page"
        case totalCount = "total-count"
    }
}
